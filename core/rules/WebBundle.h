#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "rules/ArtifactReader.h"

namespace vostrel {

/// A bundler's output (`dist`), told by what its files say of each other: every hashed file in it must be named by one
/// of its pages, or by a file that is so named. It only looks.
class WebBundle {
public:
    WebBundle(ArtifactReader& from, std::string folder);

    /// Whether all of it is one bundle, and what its pages are made from lies in the project.
    [[nodiscard]] bool isWholeAndCanBeMadeAgain();

private:
    [[nodiscard]] bool hasItsSources();
    [[nodiscard]] bool addFilesBelow(const std::string& folder, std::size_t depth);
    [[nodiscard]] bool isCopied(const std::string& file);
    void reachFromPages();

    ArtifactReader& reader;
    std::string bundle;
    std::string project;
    /// Paths of pages.
    std::vector<std::string> pages;
    /// Paths of hashed files that nothing names so far, by their names.
    std::map<std::string, std::string, std::less<>> unnamed;
};

}  // namespace vostrel
