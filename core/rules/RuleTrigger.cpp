#include "rules/RuleTrigger.h"

#include <fmt/format.h>

#include "base/Visit.h"

namespace vostrel {

bool isUnattended(const RuleTrigger& trigger) {
    return !std::holds_alternative<ManualTrigger>(trigger);
}

std::optional<std::string> timeTriggerKey(const RuleTrigger& trigger) {
    using Key = std::optional<std::string>;
    return visit(
        trigger, [](const DailyTrigger& at) -> Key { return fmt::format("daily:{:02}:{:02}", at.hour, at.minute); },
        [](const WeeklyTrigger& at) -> Key {
            return fmt::format("weekly:{}:{:02}:{:02}", at.weekday, at.hour, at.minute);
        },
        [](const EndOfDayTrigger&) -> Key { return "endOfDay"; }, [](const auto&) -> Key { return std::nullopt; });
}

}  // namespace vostrel
