#include "rules/ScheduleState.h"

namespace vostrel {

namespace {

std::optional<Date> entry(const std::map<std::string, Date>& entries, const std::string& key) {
    const auto found = entries.find(key);
    return found == entries.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void ScheduleState::setLastRun(Date date, Uuid rule) {
    lastRun[rule.text()] = date;
}

std::optional<Date> ScheduleState::lastRunOf(Uuid rule) const {
    return entry(lastRun, rule.text());
}

void ScheduleState::setCountsFrom(Date date, Uuid rule, const RuleTrigger& trigger) {
    if (const auto key = timeTriggerKey(trigger)) lastRun[rule.text() + "/" + *key] = date;
}

std::optional<Date> ScheduleState::countsFrom(Uuid rule, const RuleTrigger& trigger) const {
    const auto key = timeTriggerKey(trigger);
    const auto own = key ? entry(lastRun, rule.text() + "/" + *key) : std::nullopt;
    return own ? own : lastRunOf(rule);
}

void ScheduleState::forgetTriggers(Uuid rule) {
    std::erase_if(lastRun, [prefix = rule.text() + "/"](const auto& each) { return each.first.starts_with(prefix); });
}

void ScheduleState::forget(Uuid rule) {
    forgetTriggers(rule);
    lastRun.erase(rule.text());
}

}  // namespace vostrel
