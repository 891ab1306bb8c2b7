#include "finder/FinderCriteria.h"

#include <algorithm>
#include <chrono>

namespace vostrel {

Date FinderCriteria::oldCutoff(Date now, const Calendar& calendar) const {
    using namespace std::chrono;
    constexpr int mostMonths = 12 * 300;  // beyond what dates can tell
    const WallTime wall = calendar.wallTime(now);
    const auto day = floor<days>(wall);
    auto earlier = year_month_day(day) - months(std::clamp(oldMonths, 0, mostMonths));
    if (!earlier.ok()) earlier = earlier.year() / earlier.month() / last;
    return calendar.latest(local_days(earlier) + (wall - day));
}

}  // namespace vostrel
