#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "base/Date.h"
#include "rules/ScheduleState.h"

namespace vostrel {

/// Why a cleanup for low space is begun, and how far it goes; all in bytes.
struct ThresholdRequest {
    /// What was free when it was asked for.
    std::int64_t startFree = 0;
    /// With so much free it stops.
    std::int64_t targetFree = 0;
    /// The user's line.
    std::int64_t line = 0;

    /// One that stops as soon as free space is no longer below the line.
    [[nodiscard]] static ThresholdRequest upToTheLine(std::int64_t free, std::int64_t line) {
        return {.startFree = free, .targetFree = line, .line = line};
    }

    friend bool operator==(const ThresholdRequest&, const ThresholdRequest&) = default;
};

/// Decides whether low space starts a cleanup: at the second reading in a row below the line, an hour after the last
/// cleanup at the earliest; and for a day not at all after one that ended below the line, unless free space has climbed
/// well above it meanwhile.
///
/// A value that counts readings; the times are in the rule book's schedule, which the caller keeps.
struct ThresholdGate {
    static constexpr int requiredReadings = 2;
    static constexpr Duration cooldown = std::chrono::seconds(3'600);
    static constexpr Duration latchDuration = std::chrono::seconds(86'400);

    /// Readings in a row below the line.
    int belowStreak = 0;

    /// A reading of free space and the terms it is held against, in bytes.
    struct Reading {
        /// Nothing when it could not be read.
        std::optional<std::int64_t> free = std::nullopt;
        std::int64_t line = 0;
        /// How far above the line free space climbs before everything starts afresh.
        std::int64_t hysteresis = 0;
        bool isPaused = false;
    };

    /// Called with every reading. May change `schedule`.
    [[nodiscard]] bool shouldStart(const Reading& reading, Date now, ScheduleState& schedule);

    /// Called after every cleanup, with the time at which it was begun and what was free at its end, if that is known.
    /// Whether it ended below the line.
    static bool finish(Date startedAt, std::optional<std::int64_t> freeAfter, std::int64_t line, Date now,
                       ScheduleState& schedule);
};

/// Whether that much is known to be free, and is below the line.
[[nodiscard]] inline bool isBelow(std::optional<std::int64_t> free, std::int64_t line) {
    return free && *free < line;
}

}  // namespace vostrel
