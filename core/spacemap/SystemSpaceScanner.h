#pragma once

#include <chrono>
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
#include "monitor/VolumeCapacityReading.h"
#include "spacemap/HiddenSpace.h"
#include "spacemap/SpaceMapAccess.h"
#include "spacemap/SpaceScanTarget.h"
#include "spacemap/SpaceScanner.h"
#include "spacemap/SpaceTree.h"

namespace vostrel {

/// A map and what was known of its disk when it was made.
struct ScanResult {
    SpaceTree tree;
    std::optional<VolumeCapacity> capacity;
    bool fullDiskAccess = false;
    SpaceScanTarget target;

    /// Of a whole disk that could be measured.
    [[nodiscard]] std::optional<HiddenSpace> hidden(const SystemSpaceFigures& figures = {}) const;
};

/// Maps a folder or the startup disk as it is on this system. A plain value; one scan takes as long as its walk and is
/// for a thread in the background.
struct SystemSpaceScanner {
    static constexpr Duration defaultBudget = std::chrono::seconds(600);

    std::filesystem::path home;
    PathGuards guards;
    const FullDiskAccessChecking& fullDiskAccess;
    const VolumeCapacityReading& capacityReader;
    SpaceScanLimits limits = {};
    Duration budget = defaultBudget;
    std::function<MountTable()> mounts = &MountTable::ofSystem;
    /// How much the system could clear away, where the capacity does not say.
    std::function<std::optional<std::int64_t>()> purgeableHint = [] { return std::nullopt; };
    /// Where the startup disk's own files are found.
    std::filesystem::path diskRoot = systemDiskRoot();
    std::shared_ptr<FolderSource> source = std::make_shared<SystemFolderSource>();
    /// Called with each path whose access is decided.
    std::function<void(const std::string&)> lookedUp = [](const std::string&) {};
    Clock clock = &Date::now;

    /// `progress` may be none; `isCancelled` may be empty and is asked from the scanning thread.
    [[nodiscard]] ScanResult scan(const SpaceScanTarget& target, ScanProgressBox* progress,
                                  std::function<bool()> isCancelled) const;
    /// The rules that such a scan goes by.
    [[nodiscard]] SpaceMapAccess accessTo(const SpaceScanTarget& target) const;

    /// How long to wait for a scan before giving up on it.
    [[nodiscard]] Duration waitLimit() const;
    [[nodiscard]] static std::filesystem::path systemDiskRoot();

private:
    [[nodiscard]] std::filesystem::path pathOf(const SpaceScanTarget& target) const;
    [[nodiscard]] MountTable mountsBeside(const std::filesystem::path& root) const;
    [[nodiscard]] std::optional<VolumeCapacity> capacityAt(const std::filesystem::path& root) const;
};

}  // namespace vostrel
