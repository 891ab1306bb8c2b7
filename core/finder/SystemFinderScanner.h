#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "access/FullDiskAccess.h"
#include "access/MountTable.h"
#include "base/Date.h"
#include "filesystem/FolderSource.h"
#include "filesystem/PathGuards.h"
#include "finder/FileDigesting.h"
#include "finder/FinderLimits.h"
#include "finder/FinderProgress.h"
#include "finder/FinderResult.h"
#include "finder/FinderWalker.h"

namespace vostrel {

/// Searches folders for large, old and duplicate files as they are on this system: walks, looks up when old files were
/// last opened, compares what may be equal. It changes nothing. A plain value; a scan takes as long as its stages and
/// is for a thread in the background.
struct SystemFinderScanner {
    std::filesystem::path home;
    PathGuards guards;
    const FullDiskAccessChecking& fullDiskAccess;
    FinderLimits limits = {};
    std::function<MountTable()> mounts = &MountTable::ofSystem;
    std::shared_ptr<const FileDigesting> digester = std::make_shared<FileDigester>();
    /// When a file was last used, where the system keeps a record of that.
    std::function<std::optional<Date>(const std::filesystem::path&)> lastUsed = &recordedLastUse;
    /// Whether a file is kept in iCloud; nothing when that cannot be told. Thread-safe.
    std::function<std::optional<bool>(const std::filesystem::path&)> isInICloud = &isKeptInICloud;
    std::shared_ptr<FolderSource> opener = std::make_shared<SystemFolderSource>();
    /// Called with each path whose access is decided.
    std::function<void(const std::string&)> lookedUp = [](const std::string&) {};
    Clock clock = &Date::now;

    /// `progress` may be none; `isCancelled` may be empty and is asked from several threads.
    [[nodiscard]] FinderResult scan(const FinderRequest& request, FinderProgressBox* progress,
                                    const std::function<bool()>& isCancelled) const;

    [[nodiscard]] static std::optional<Date> recordedLastUse(const std::filesystem::path& file);
    [[nodiscard]] static std::optional<bool> isKeptInICloud(const std::filesystem::path& file);

private:
    [[nodiscard]] FinderWalker walkerFor(const FinderRequest& request) const;
};

}  // namespace vostrel
