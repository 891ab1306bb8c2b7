#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "cleaning/FileOperating.h"
#include "cleaning/ItemOutcome.h"
#include "cleaning/ProjectChecks.h"
#include "cleaning/RunControl.h"
#include "cleaning/StopReason.h"
#include "filesystem/FileFacts.h"
#include "filesystem/PathGuards.h"
#include "platform/RunningApplications.h"
#include "rules/CleanupAction.h"
#include "rules/CleanupPlan.h"
#include "rules/PresetCatalog.h"
#include "rules/RuleFilter.h"

namespace vostrel {

/// The mount that an item lies on, asked by its path without following a link at its end; nothing when that cannot be
/// told.
[[nodiscard]] std::optional<VolumeIdentity> volumeIdentityOf(const std::filesystem::path& path);

/// The UUID of the volume that a folder lies on, its path going through no link.
[[nodiscard]] std::optional<std::string> volumeUUIDOf(const std::filesystem::path& folder);

/// Carries out a preview, item by item, and trusts nothing in it: right before an item is touched it is checked again,
/// and left alone with a sentence that says why unless it is exactly what the preview saw.
///
/// It holds nothing between runs, keeps no log and takes no lock: that is the runner's. It works on the caller's
/// thread; everything it refers to outlives it. Nothing fails as a whole: every failure is an item's outcome.
struct CleanupExecutor {
    FileOperating& fileOps;
    const PathGuards& guards;
    const RunningAppsProviding& runningApps;
    const PresetCatalog& catalog;
    std::function<std::optional<VolumeIdentity>(const std::filesystem::path&)> volumeIdentity = &volumeIdentityOf;
    Clock clock = &Date::now;
    std::function<std::optional<std::string>(const std::filesystem::path&)> volumeUUID = &volumeUUIDOf;
    /// For walking one folder again.
    Duration timeLimit = std::chrono::seconds(30);
    /// Running applications and the live rule are asked no more often.
    Duration appCheckInterval = std::chrono::milliseconds(500);
    /// Measures a project again; empty for the usual walk, within 30 seconds.
    ProjectMeasuring measureProject = {};

    struct Result {
        /// One for each planned item, in the plan's order.
        std::vector<ItemOutcome> outcomes;
        /// Absent when every item was handled.
        std::optional<StopReason> stop;

        friend bool operator==(const Result&, const Result&) = default;
    };

    /// What a run is told beside the plan.
    struct Order {
        CleanupAction action = CleanupAction::trash;
        RuleFilter filter;
        /// Identifiers of applications that stop the run when they run.
        std::vector<std::string> pauseWhileRunning;
        /// Whether the rule changed, or automatic cleaning was paused; may be empty.
        std::function<std::optional<StopReason>()> liveCheck;
        /// A sentence when this item must be left alone; may be empty.
        std::function<std::optional<std::string>(const PlannedItem&)> itemGate;
        /// Hears of each item before it is looked at; may be empty.
        std::function<void(const PlannedItem&)> progress;
    };

    [[nodiscard]] Result execute(const CleanupPlan& plan, const Order& order, const RunControl& control) const;
};

}  // namespace vostrel
