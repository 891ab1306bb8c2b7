#include <gtest/gtest.h>

#include <cstdlib>

#include "base/Calendar.h"
#include "base/LocalTime.h"

namespace vostrel {
namespace {

using std::chrono::local_days;
using std::chrono::year;
using namespace std::chrono_literals;

Date utc(std::chrono::year_month_day day, std::chrono::minutes time) {
    return Date::fromSeconds(std::chrono::seconds(std::chrono::sys_days(day).time_since_epoch() + time).count());
}

TEST(CalendarTest, findsTheNextTimeThatComesOnBothSidesOfEveryChangeOfTheClocks) {
    struct Case {
        const char* zone;
        RecurringTime time;
        Date after;
        std::optional<Date> next;
    };
    const RecurringTime halfPastTwo{2, 30};
    const std::vector<Case> cases{
        {"Europe/Berlin", halfPastTwo, utc(year(2025) / 3 / 29, 2h), utc(year(2025) / 3 / 30, 1h)},
        {"Europe/Berlin", halfPastTwo, utc(year(2025) / 3 / 30, 1h), utc(year(2025) / 3 / 31, 30min)},
        {"Europe/Berlin", {2, 30, 1}, utc(year(2025) / 3 / 24, 0h), utc(year(2025) / 3 / 30, 1h)},
        {"Europe/Berlin", halfPastTwo, utc(year(2025) / 10 / 25, 12h), utc(year(2025) / 10 / 26, 30min)},
        {"Europe/Berlin", halfPastTwo, utc(year(2025) / 10 / 26, 30min), utc(year(2025) / 10 / 27, 1h + 30min)},
        {"America/Sao_Paulo", {0, 30}, utc(year(2018) / 11 / 3, 12h), utc(year(2018) / 11 / 4, 3h)},
        {"Pacific/Apia", {9, 0}, utc(year(2011) / 12 / 29, 20h), utc(year(2011) / 12 / 30, 19h)},
        {"Pacific/Apia", {9, 0, 6}, utc(year(2011) / 12 / 24, 0h), utc(year(2012) / 1 / 5, 19h)},
        {"Asia/Kathmandu", {0, 0, 7}, utc(year(2025) / 6 / 6, 18h + 15min), utc(year(2025) / 6 / 13, 18h + 15min)},
        {"Etc/UTC", {24, 0}, Date(), std::nullopt},
        {"Etc/UTC", {9, 0, 8}, Date(), std::nullopt},
        {"Asia/Tokyo", {9, 0}, Date::distantFuture(), std::nullopt},
    };
    for (const Case& tested : cases)
        EXPECT_EQ(Calendar::ofZone(tested.zone)->next(tested.time, tested.after), tested.next) << tested.zone;
    EXPECT_FALSE(Calendar::ofZone("Europe/Nowhere"));
}

TEST(CalendarTest, takesTheLastMomentThatATimeMayMean) {
    const auto berlin = Calendar::ofZone("Europe/Berlin").value();
    const auto summer = local_days(year(2025) / 3 / 30) + 2h + 30min;
    EXPECT_EQ(berlin.latest(summer), utc(year(2025) / 3 / 30, 1h + 30min));
    EXPECT_EQ(berlin.latest(local_days(year(2025) / 10 / 26) + 2h + 30min), utc(year(2025) / 10 / 26, 1h + 30min));
    EXPECT_EQ(berlin.wallTime(berlin.latest(summer)), summer + 1h);
}

TEST(CalendarTest, travelsWithTheMachine) {
    const char* const before = std::getenv("TZ");
    const std::string zone = before ? before : "";
    const Calendar calendar;
    const Date noon = utc(year(2025) / 7 / 1, 12h);
    for (const auto& [chosen, shown] : {std::pair{"Asia/Tokyo", "2025-07-01 21:00"},
                                        {":America/New_York", "2025-07-01 08:00"},
                                        {"", "2025-07-01 12:00"}}) {
        setenv("TZ", chosen, 1);
        EXPECT_EQ(localTime(noon), shown);
        EXPECT_EQ(calendar.latest(calendar.wallTime(noon)), noon);
    }
    before ? setenv("TZ", zone.c_str(), 1) : unsetenv("TZ");
}

}  // namespace
}  // namespace vostrel
