#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/Date.h"

namespace date {
class time_zone;
}

namespace vostrel {

/// What clocks on the wall show. The same time may come twice, or not at all, where clocks are set back or ahead.
using WallTime = std::chrono::local_seconds;

/// A time that comes round every day, or once a week.
struct RecurringTime {
    int hour = 0;
    int minute = 0;
    /// 1 (Sunday) to 7 (Saturday); nothing for every day.
    std::optional<int> weekday = std::nullopt;

    /// Whether clocks and calendars have that time.
    [[nodiscard]] bool exists() const;
};

/// Dates as people in one time zone tell them. A value; any thread.
class Calendar {
public:
    /// Of the time zone in which the machine is, asked anew at every use, so that it travels along: the one that the
    /// TZ variable names, else the system's; UTC where neither is known.
    Calendar() = default;
    /// Of one time zone ("Europe/Berlin"); nothing when the system knows none of that name.
    [[nodiscard]] static std::optional<Calendar> ofZone(const std::string& name);

    [[nodiscard]] WallTime wallTime(Date date) const;

    /// The last moment that may be meant by it: of a time that comes twice the second, and a time that clocks jump over
    /// is told by the clock that was not set ahead.
    [[nodiscard]] Date latest(WallTime time) const;

    /// The first moment after `after` at which that time comes: of a time that comes twice the first, for one that
    /// clocks jump over the moment to which they jump. A day that a zone leaves out altogether does not come. Nothing
    /// for a time that does not exist, or beyond the range of dates.
    [[nodiscard]] std::optional<Date> next(const RecurringTime& time, Date after) const;

private:
    /// Nothing: the machine's.
    const date::time_zone* zone = nullptr;
};

}  // namespace vostrel
