#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "rules/ArtifactReader.h"

namespace vostrel {

/// A bundler's output (`dist`), told by what its files say of each other: every hashed file in it must be named by one
/// of its pages, or by a file that is so named, and all of it must have been written in one go. It only looks.
class WebBundle {
public:
    WebBundle(ArtifactReader& from, std::string folder);

    /// Where the bundler copies the project's public files to: folders inside the output, the output itself empty.
    [[nodiscard]] std::vector<std::string> foldersOfCopies();
    /// Whether all of it but these copies is one bundle, and what its pages are made from lies in the project.
    [[nodiscard]] bool isWholeAndCanBeMadeAgain(const std::set<std::string>& copies);

private:
    [[nodiscard]] bool hasItsSources();
    [[nodiscard]] bool addFiles(const std::set<std::string>& copies);
    [[nodiscard]] bool wasWrittenInOneGo();
    void reachFromPages();

    ArtifactReader& reader;
    std::string bundle;
    std::string project;
    /// Paths of all that the bundler wrote itself, and of the pages among it.
    std::vector<std::string> written;
    std::vector<std::string> pages;
    /// Paths of hashed files that nothing names so far, by their names.
    std::map<std::string, std::string, std::less<>> unnamed;
};

}  // namespace vostrel
