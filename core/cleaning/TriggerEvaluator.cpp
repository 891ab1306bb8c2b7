#include "cleaning/TriggerEvaluator.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Visit.h"
#include "rules/RuleSentences.h"

namespace vostrel {

namespace {

/// Nothing for a trigger that the clock does not start.
std::optional<RecurringTime> timeOf(const RuleTrigger& trigger) {
    using Time = std::optional<RecurringTime>;
    return visit(
        trigger, [](const DailyTrigger& at) -> Time { return RecurringTime{at.hour, at.minute}; },
        [](const WeeklyTrigger& at) -> Time { return RecurringTime{at.hour, at.minute, at.weekday}; },
        [](const EndOfDayTrigger&) -> Time { return RecurringTime{TriggerEvaluator::endOfDayHour, 0}; },
        [](const auto&) -> Time { return std::nullopt; });
}

Date startOf(const Rule& rule, const RuleTrigger& trigger, const ScheduleState& schedule) {
    return schedule.countsFrom(rule.id, trigger).value_or(rule.createdAt);
}

std::string problemOf(const RecurringTime& time) {
    if (time.exists()) return {};
    return RecurringTime{time.hour, time.minute}.exists() ? sentences::noDayOfTheWeek : sentences::noTimeOfDay;
}

}  // namespace

std::vector<TriggerEvaluator::ScheduledDispatch> TriggerEvaluator::due(std::span<const Rule> rules, Date now,
                                                                       const ScheduleState& schedule) const {
    std::vector<ScheduledDispatch> dispatches;
    for (const Rule& rule : rules) {
        if (!rule.enabled) continue;
        std::vector<DueTrigger> due;
        for (const RuleTrigger& trigger : rule.triggers) {
            const auto occurrence = next(rule, trigger, schedule);
            if (occurrence && *occurrence <= now) due.push_back({trigger, *occurrence});
        }
        if (due.empty()) continue;
        const Date first = std::ranges::min(due, {}, &DueTrigger::occurrence).occurrence;
        dispatches.push_back({rule, first, std::move(due)});
    }
    return dispatches;
}

std::expected<Date, std::string> TriggerEvaluator::next(const Rule& rule, const RuleTrigger& trigger,
                                                        const ScheduleState& schedule) const {
    const auto time = timeOf(trigger);
    if (!time) return std::unexpected(std::string());
    const auto moment = calendar.next(*time, startOf(rule, trigger, schedule));
    if (!moment) return std::unexpected(problemOf(*time));
    return *moment;
}

void TriggerEvaluator::catchUpWithTheClock(std::span<const Rule> rules, Date now, ScheduleState& schedule) {
    for (const Rule& rule : rules) {
        for (const RuleTrigger& trigger : rule.triggers) {
            if (startOf(rule, trigger, schedule) > now + longestWaitForTheClock)
                schedule.setCountsFrom(now, rule.id, trigger);
        }
    }
}

std::vector<Rule> rulesForAppQuit(std::string_view bundleID, std::span<const Rule> rules) {
    std::vector<Rule> started;
    std::ranges::copy_if(rules, std::back_inserter(started), [&](const Rule& rule) {
        return rule.enabled && std::ranges::any_of(rule.triggers, [&](const RuleTrigger& trigger) {
                   const auto* const quit = std::get_if<WhenAppQuitsTrigger>(&trigger);
                   return quit && quit->bundleID == bundleID;
               });
    });
    return started;
}

}  // namespace vostrel
