#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "filesystem/AccessDecision.h"
#include "filesystem/FolderSource.h"
#include "filesystem/FolderWalk.h"
#include "filesystem/LinkSet.h"
#include "filesystem/WalkBudget.h"
#include "filesystem/WalkTotals.h"

namespace vostrel {

/// Adds up the allocated space below a folder, and below marked folders inside it in the same pass.
///
/// Counted are the blocks of everything but folders and links, a hard-linked file once for all walks that share a
/// `LinkSet`. Links are not followed, other volumes not entered, and access to every folder is decided before it is
/// opened. A plain value that any thread may use; its functions must be thread-safe.
struct SizeWalker {
    static constexpr std::size_t usualMaxDepth = 256;

    using Access = std::function<AccessDecision(const std::string& path)>;

    Access access;
    /// Whether the process has Full Disk Access: it changes what `EPERM` means.
    bool fullDiskAccess = false;
    std::size_t maxDepth = usualMaxDepth;
    /// Called with each path whose access is decided.
    std::function<void(const std::string& path)> lookedUp = [](const std::string&) {};
    /// Threads that list ahead of the walk; the result is the same for any number.
    unsigned helpers = FolderWalk::usualHelpers();
    /// The file system through the system's opening; another opener goes into a `SystemFolderSource`.
    std::shared_ptr<FolderSource> source = std::make_shared<SystemFolderSource>();

    /// Names of the marks at each marked folder's path.
    using Marks = std::map<std::string, std::vector<std::string>>;

    /// A folder that may be opened, by its path without links.
    struct Folder {
        std::string path;
        FileStatus status;
    };
    /// Anything else that is there.
    struct Other {
        FileStatus status;
    };
    /// What a root turned out to be; the result where it can be neither.
    using Place = std::variant<Folder, Other, WalkResult>;
    [[nodiscard]] Place examine(const std::string& root) const;

    /// Measures the tree at `root`, an absolute path. A mark that names no folder of the tree is in neither map.
    [[nodiscard]] WalkResult walk(const std::string& root, const Marks& marks, const WalkBudget& budget,
                                  LinkSet& links) const;
};

}  // namespace vostrel
