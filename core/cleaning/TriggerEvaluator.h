#pragma once

#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Calendar.h"
#include "base/Date.h"
#include "rules/Rule.h"
#include "rules/ScheduleState.h"

namespace vostrel {

/// Tells which rules the clock starts. A value that asks nothing of the system but the time zone.
struct TriggerEvaluator {
    /// "At the end of the day" is at six in the evening.
    static constexpr int endOfDayHour = 18;
    /// A last run that is dated further ahead than this was recorded while the clock was wrong.
    static constexpr Duration longestWaitForTheClock = std::chrono::hours(24);

    Calendar calendar = {};

    struct DueTrigger {
        RuleTrigger trigger;
        /// The first time since the trigger's last run.
        Date occurrence;
    };
    /// A rule that is due. However many of its times were missed, and by however many triggers, it runs once.
    struct ScheduledDispatch {
        Rule rule;
        /// The first of the times that are being caught up with.
        Date occurrence;
        std::vector<DueTrigger> due;
    };

    /// The enabled rules that are due, in their order. A machine that slept through a rule's time finds it due when it
    /// wakes.
    [[nodiscard]] std::vector<ScheduledDispatch> due(std::span<const Rule> rules, Date now,
                                                     const ScheduleState& schedule) const;

    /// When a trigger of the rule comes next by the clock, counted from its last run, or from when the rule was made.
    /// Fails when it never does: with the sentence of a rule whose time is none, with an empty one for other triggers.
    [[nodiscard]] std::expected<Date, std::string> next(const Rule& rule, const RuleTrigger& trigger,
                                                        const ScheduleState& schedule) const;

    /// After the clock was set back: lets triggers whose last run is dated more than a day ahead count from now on, so
    /// that none waits for ever. One that is dated up to a day ahead waits, so that none runs twice.
    static void catchUpWithTheClock(std::span<const Rule> rules, Date now, ScheduleState& schedule);
};

/// The enabled rules that this application starts when it quits.
[[nodiscard]] std::vector<Rule> rulesForAppQuit(std::string_view bundleID, std::span<const Rule> rules);

}  // namespace vostrel
