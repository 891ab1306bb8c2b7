#include "base/Calendar.h"

#include <date/tz.h>

#include <cstdlib>
#include <exception>
#include <string_view>

namespace vostrel {

namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::seconds;

const date::time_zone* zoneNamed(std::string_view name) {
    try {
        return date::locate_zone(name);
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// Nothing where it is UTC or not known.
const date::time_zone* zoneOfTheMachine() {
    if (const char* const chosen = std::getenv("TZ")) {
        std::string_view name(chosen);
        if (name.starts_with(':')) name.remove_prefix(1);
        if (name.empty()) return nullptr;
        if (const auto* const zone = zoneNamed(name)) return zone;
    }
    try {
        return date::current_zone();
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// What is known of a time that clocks show. UTC has each once.
date::local_info told(const date::time_zone* zone, WallTime time) {
    if (!zone) return {};
    return zone->get_info(date::local_seconds(time.time_since_epoch()));
}

Date momentOf(WallTime time, seconds offset) {
    return Date::fromSeconds((time.time_since_epoch() - offset).count());
}

Date earliest(const date::time_zone* zone, WallTime time) {
    const auto info = told(zone, time);
    if (info.result == date::local_info::nonexistent)
        return Date::fromSeconds(info.first.end.time_since_epoch().count());
    return momentOf(time, info.first.offset);
}

WallTime shown(const date::time_zone* zone, Date moment) {
    const seconds utc(moment.seconds());
    const auto offset = zone ? zone->get_info(date::sys_seconds(utc)).offset : seconds(0);
    return WallTime(utc + offset);
}

/// 1 is Sunday.
int dayOfWeek(local_days day) {
    return static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
}

bool comes(const date::time_zone* zone, local_days day) {
    return std::chrono::floor<days>(shown(zone, earliest(zone, day))) == day;
}

}  // namespace

bool RecurringTime::exists() const {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && weekday.value_or(1) >= 1 && weekday.value_or(7) <= 7;
}

std::optional<Calendar> Calendar::ofZone(const std::string& name) {
    Calendar calendar;
    calendar.zone = zoneNamed(name);
    return calendar.zone ? std::optional(calendar) : std::nullopt;
}

WallTime Calendar::wallTime(Date date) const {
    return shown(zone ? zone : zoneOfTheMachine(), date);
}

Date Calendar::latest(WallTime time) const {
    const auto info = told(zone ? zone : zoneOfTheMachine(), time);
    return momentOf(time, info.result == date::local_info::ambiguous ? info.second.offset : info.first.offset);
}

std::optional<Date> Calendar::next(const RecurringTime& time, Date after) const {
    if (!time.exists()) return std::nullopt;
    const auto* const here = zone ? zone : zoneOfTheMachine();
    const auto today = std::chrono::floor<days>(shown(here, after));
    // From the day before, for clocks may have been set back over midnight; a day of the week may be one left out.
    for (local_days day = today - days(1); day <= today + days(15); day += days(1)) {
        const bool isThatDay = !time.weekday || dayOfWeek(day) == *time.weekday;
        if (!isThatDay || !comes(here, day)) continue;
        const Date moment = earliest(here, day + std::chrono::hours(time.hour) + std::chrono::minutes(time.minute));
        if (moment > after) return moment;
    }
    return std::nullopt;
}

}  // namespace vostrel
