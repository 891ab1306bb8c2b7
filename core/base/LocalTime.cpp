#include "base/LocalTime.h"

#include <fmt/format.h>

#include "base/Calendar.h"

namespace vostrel {

namespace {

using std::chrono::floor;

std::string dayText(WallTime time) {
    const std::chrono::year_month_day day(floor<std::chrono::days>(time));
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                       static_cast<unsigned>(day.day()));
}

}  // namespace

std::string localDay(Date date) {
    return dayText(Calendar().wallTime(date));
}

std::string localTime(Date date) {
    const WallTime time = Calendar().wallTime(date);
    const std::chrono::hh_mm_ss clock(time - floor<std::chrono::days>(time));
    return fmt::format("{} {:02}:{:02}", dayText(time), clock.hours().count(), clock.minutes().count());
}

}  // namespace vostrel
