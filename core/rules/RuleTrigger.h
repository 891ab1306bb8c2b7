#pragma once

#include <compare>
#include <optional>
#include <string>
#include <variant>

namespace vostrel {

/// Every day at that local time.
struct DailyTrigger {
    int hour = 0;
    int minute = 0;
    friend auto operator<=>(const DailyTrigger&, const DailyTrigger&) = default;
};

/// On one day of the week, 1 (Sunday) to 7 (Saturday), at that local time.
struct WeeklyTrigger {
    int weekday = 1;
    int hour = 0;
    int minute = 0;
    friend auto operator<=>(const WeeklyTrigger&, const WeeklyTrigger&) = default;
};

/// When the application with that bundle identifier quits.
struct WhenAppQuitsTrigger {
    std::string bundleID;
    friend auto operator<=>(const WhenAppQuitsTrigger&, const WhenAppQuitsTrigger&) = default;
};

struct EndOfDayTrigger {
    friend auto operator<=>(const EndOfDayTrigger&, const EndOfDayTrigger&) = default;
};

/// When free space falls below the user's line.
struct BelowLineTrigger {
    friend auto operator<=>(const BelowLineTrigger&, const BelowLineTrigger&) = default;
};

/// Only by hand.
struct ManualTrigger {
    friend auto operator<=>(const ManualTrigger&, const ManualTrigger&) = default;
};

/// When a rule runs. Hours, minutes and weekdays that do not exist can be read and held; validation reports them.
using RuleTrigger =
    std::variant<DailyTrigger, WeeklyTrigger, WhenAppQuitsTrigger, EndOfDayTrigger, BelowLineTrigger, ManualTrigger>;

/// Whether it starts a rule without the user.
[[nodiscard]] bool isUnattended(const RuleTrigger& trigger);

/// Names a trigger that comes round by the clock: "daily:09:05", "weekly:2:09:05", "endOfDay"; nothing for the others.
[[nodiscard]] std::optional<std::string> timeTriggerKey(const RuleTrigger& trigger);

}  // namespace vostrel
