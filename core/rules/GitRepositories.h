#pragma once

#include <expected>
#include <map>
#include <optional>
#include <string>

#include "filesystem/FolderSource.h"
#include "rules/GitIndex.h"

namespace vostrel {

/// Tells whether a Git repository around a folder keeps something in it under version control.
///
/// Every repository around it is asked; one with neither index nor commits keeps nothing yet. Follows no link but what
/// a worktree or submodule says of where its repository lies, downloads nothing, and reads each index once. One thread
/// uses an object.
class GitRepositories {
public:
    enum class Answer {
        notTracked,
        tracked,
        /// An index, or where it lies, could not be read.
        unknown,
    };

    explicit GitRepositories(FolderSource& from) : source(from) {}

    /// `folder` is an absolute path without links.
    [[nodiscard]] Answer tracking(const std::string& folder);

private:
    struct Unreadable {};
    /// Nothing where there is none.
    using Index = std::expected<std::optional<GitIndex>, Unreadable>;

    [[nodiscard]] const Index& indexOf(const std::string& folder);
    [[nodiscard]] Index read(const std::string& folder) const;

    FolderSource& source;
    /// By the folder with the repository's files.
    std::map<std::string, Index> known;
};

}  // namespace vostrel
