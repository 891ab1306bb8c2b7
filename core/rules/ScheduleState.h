#pragma once

#include <map>
#include <optional>
#include <string>

#include "base/Date.h"
#include "base/Uuid.h"
#include "rules/RuleTrigger.h"

namespace vostrel {

/// When rules last ran, and when the last cleanup for low space was.
///
/// `lastRun` holds under a rule's UUID its last run by any trigger, and under UUID + "/" + trigger key
/// ("…/daily:09:05") the time from which that trigger counts. Entries of rules that could not be read stay.
struct ScheduleState {
    std::map<std::string, Date> lastRun;
    std::optional<Date> lastThresholdSession;
    std::optional<Date> thresholdLatchedAt;

    void setLastRun(Date date, Uuid rule);
    [[nodiscard]] std::optional<Date> lastRunOf(Uuid rule) const;

    /// From when a time trigger of the rule counts: its own entry, else the rule's.
    void setCountsFrom(Date date, Uuid rule, const RuleTrigger& trigger);
    [[nodiscard]] std::optional<Date> countsFrom(Uuid rule, const RuleTrigger& trigger) const;

    /// Drops the entries of the rule's triggers, and of the rule itself.
    void forgetTriggers(Uuid rule);
    void forget(Uuid rule);

    friend bool operator==(const ScheduleState&, const ScheduleState&) = default;
};

}  // namespace vostrel
