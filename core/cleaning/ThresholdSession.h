#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "cleaning/BatchControl.h"
#include "cleaning/CleanupRunner.h"
#include "cleaning/RunReport.h"
#include "cleaning/ThresholdGate.h"
#include "monitor/VolumeCapacityReading.h"
#include "rules/Rule.h"

namespace vostrel {

/// Cleans for low space: runs rules one after another until enough is free, and no longer.
///
/// What it refers to outlives it. Works on the caller's thread.
struct ThresholdSession {
    const CleanupRunner& runner;
    const VolumeCapacityReading& reader;
    /// Any path on the volume whose free space is to grow.
    std::filesystem::path volume;
    /// Whether a folder that exists lies on that volume.
    std::function<bool(const std::filesystem::path&)> isOnMeasuredVolume;

    struct Outcome {
        std::vector<RunReport> reports;
        /// What was free at the end, in bytes; nothing when it could not be read, or nothing was begun.
        std::optional<std::int64_t> freeAfter;
        /// What the runs deleted and moved to the Trash, in bytes.
        std::int64_t countedBytes = 0;
        /// It was cancelled.
        bool interrupted = false;
    };

    /// What the runner may ask while this rule runs.
    using PresentOf = std::function<CleanupRunner::Present(const Rule&)>;

    /// Runs those of the rules that it may. It stops when enough is free, when what is free cannot be read, or when the
    /// control is cancelled; a rule that is cancelled alone is passed over.
    [[nodiscard]] Outcome run(const ThresholdRequest& request, std::span<const Rule> rules, const PresentOf& presentOf,
                              BatchControl& control) const;

    /// The rules that it may run, in the order in which it does: what comes back by itself first, then what does after
    /// a large download, then build folders, then the rest; of each kind what is deleted before what goes to the Trash,
    /// which frees nothing yet; of those, what removed most when it last removed something; and else the given order.
    ///
    /// It may run a rule whose folders lie on the volume, as far as they exist. One of whose folders nothing is known
    /// is taken along: its run says what is wrong.
    [[nodiscard]] std::vector<Rule> ordered(std::span<const Rule> rules) const;

    /// Whether low space starts the rule: it is on, approved, and has the trigger.
    [[nodiscard]] static bool isStartedBy(const Rule& rule, const PresetCatalog& catalog);

private:
    [[nodiscard]] bool isElsewhere(const Rule& rule) const;
    [[nodiscard]] std::optional<std::int64_t> freeNow() const;
};

/// Whether a folder shares its volume's space with that of `volume`, by the volumes' UUIDs, which are asked each time.
[[nodiscard]] std::function<bool(const std::filesystem::path&)> sharesSpaceWith(std::filesystem::path volume);

}  // namespace vostrel
