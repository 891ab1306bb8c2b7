#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "filesystem/FileIdentity.h"
#include "filesystem/FolderReader.h"
#include "filesystem/FolderSource.h"
#include "filesystem/FolderWalk.h"
#include "filesystem/GuardException.h"
#include "filesystem/PathGuards.h"
#include "filesystem/WalkBudget.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// Finds the build folders of projects below a code folder, and how long nobody has touched those projects.
///
/// One walk does both. It follows no link, leaves no volume, enters nothing that the path guards refuse, and never a
/// folder that it has recognised: its cost is that of the sources. Inside packages and inside folders that merely have
/// a build folder's name it finds nothing, but counts everything as source. It only looks.
///
/// A project's newest source is the newest modification, status change or arrival among its own files and folders, down
/// to `sourceWalkDepth` below it; a project inside another is a part of that one too. What could not be read might be
/// newer: then its build folders are left out.
class ProjectScanner {
public:
    /// A build folder lies at most so many folders below the code folder.
    static constexpr std::size_t discoveryDepth = 5;
    /// Folders further below a project are not looked at for its sources.
    static constexpr std::size_t sourceWalkDepth = 16;

    /// A build folder and the project that owns it: the folder around it, or for Python's bytecode the Python project
    /// around that.
    struct Candidate {
        std::filesystem::path artifact;
        ArtifactKind kind = ArtifactKind::nodeModules;
        std::filesystem::path project;
        Date newestSource;
        FileIdentity identity;
        /// The folder that contains it.
        FileIdentity parent;

        [[nodiscard]] ProjectStamp stamp() const { return {project, kind, newestSource}; }
    };
    struct Discovery {
        /// By path.
        std::vector<Candidate> candidates;
        /// Folders of the wanted kinds' names, or links, that are none; build folders whose project could not be
        /// judged.
        std::vector<SkippedItem> leftOut;
        std::vector<std::filesystem::path> unreadable;
        /// What was not looked at any more may hold further ones.
        bool timedOut = false;
        bool cancelled = false;
        /// The code folder as it was opened, and the error that kept it from being read.
        FileIdentity root;
        int rootError = 0;
    };

    /// All of them outlive the object.
    ProjectScanner(const PathGuards& pathGuards, FolderSource& from, unsigned listingHelpers)
        : guards(pathGuards), source(from), helpers(listingHelpers) {}

    /// Gets each folder that is looked at.
    void watch(std::function<void(std::string_view folder)> folders) { watcher = std::move(folders); }

    /// Looks below an opened code folder, an absolute path without links; `exception` is that of this root.
    [[nodiscard]] Discovery discover(const std::filesystem::path& codeFolder,
                                     const std::optional<GuardException>& exception, WalkVolume volume,
                                     const std::set<ArtifactKind>& kinds, const WalkBudget& budget) const;

    /// The newest source of one project again, exactly as `discover` tells it; nothing when it cannot be told for sure.
    /// The dates of the folders `removedFrom` do not count: taking a build folder out of them has changed those.
    [[nodiscard]] std::optional<Date> newestSource(const std::filesystem::path& project,
                                                   const std::optional<GuardException>& exception,
                                                   const WalkBudget& budget,
                                                   const std::set<std::filesystem::path>& removedFrom = {}) const;

private:
    const PathGuards& guards;
    FolderSource& source;
    unsigned helpers;
    std::function<void(std::string_view)> watcher;
};

}  // namespace vostrel
