#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "cleaning/CleanLog.h"
#include "cleaning/CleanupExecutor.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/RunControl.h"
#include "cleaning/RunLock.h"
#include "cleaning/RunReport.h"
#include "cleaning/UnattendedLookup.h"
#include "monitor/VolumeCapacityReading.h"
#include "platform/RunningApplications.h"

namespace vostrel {

/// Runs one rule once: decides whether it may run now, lets no other clean run meanwhile, records the run before
/// anything is touched, has the preview carried out, measures the space that came back, and records the end.
///
/// Every call ends with a report, also of a rule that was not run and why. Nothing is removed unless the start of the
/// run is in the log. Works on the caller's thread; everything it refers to outlives it.
struct CleanupRunner {
    /// A preview may be run for so long.
    static constexpr std::chrono::seconds previewLifetime{900};

    const VolumeCapacityReading& reader;
    const CleanupPlanner& planner;
    const CleanupExecutor& executor;
    const RunningAppsProviding& runningApps;
    const CleanLog& log;
    const RunLock& lock;
    Clock clock = &Date::now;
    /// Asked of the folders before a run that nobody watches.
    UnattendedLookup lookup = {};

    /// What a run asks of the present, from its own thread, before it begins and while it runs.
    struct Present {
        /// Whether automatic cleaning is paused.
        std::function<bool()> isPaused;
        /// The rule as it is in the rule book; nothing once it was removed.
        std::function<std::optional<Rule>()> currentRule;
        /// Hears of each item before it is looked at; may be empty.
        std::function<void(const PlannedItem&)> progress = {};
    };

    /// Whether an application that the rule waits for is running.
    [[nodiscard]] bool waits(const Rule& rule) const;

    /// Plans the rule now and runs it.
    [[nodiscard]] RunReport run(const Rule& rule, RunTrigger trigger, const Present& present,
                                const RunControl& control) const;

    /// Runs a preview that the user saw.
    [[nodiscard]] RunReport run(const Rule& rule, const CleanupPlan& plan, const Present& present,
                                const RunControl& control) const;

    /// A sentence when an item must be left alone; may be empty.
    using ItemGate = std::function<std::optional<std::string>(const PlannedItem&)>;

    /// Moves files that the user chose among the large, old and duplicate ones to the Trash.
    [[nodiscard]] RunReport runFinderTrash(const CleanupPlan& plan, const ItemGate& itemGate,
                                           const RunControl& control) const;
    /// Moves items that the user chose on the space map to the Trash.
    [[nodiscard]] RunReport runSpaceTrash(const CleanupPlan& plan, const RunControl& control) const;
};

}  // namespace vostrel
