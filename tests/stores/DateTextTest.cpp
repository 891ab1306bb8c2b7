#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "stores/DateText.h"

namespace vostrel {
namespace {

constexpr std::int64_t march3 = 1'740'992'707;  // 2025-03-03T09:05:07Z

TEST(DateTextTest, writesThreeToNineDigitsOfFraction) {
    const std::pair<Date, const char*> table[] = {
        {Date::fromSeconds(march3), "2025-03-03T09:05:07.000Z"},
        {Date::fromSeconds(march3, 120'000), "2025-03-03T09:05:07.00012Z"},
        {Date::fromSeconds(march3, 123'456'789), "2025-03-03T09:05:07.123456789Z"},
        {Date::fromNanoseconds(-1), "1969-12-31T23:59:59.999999999Z"},
        {Date::fromSeconds(951'782'400), "2000-02-29T00:00:00.000Z"},
        {Date::distantFuture(), "2262-04-11T23:47:16.854775807Z"},
        {Date::distantPast(), "1677-09-21T00:12:43.145224192Z"},
    };
    for (const auto& [date, text] : table) {
        EXPECT_EQ(dateText(date), text);
        EXPECT_EQ(dateFromText(text), date) << text;
    }
    EXPECT_EQ(compactDateText(Date::fromSeconds(march3, 999'999'999)), "20250303-090507");
}

TEST(DateTextTest, readsOtherFractionsToTheNearestNanosecond) {
    const std::pair<const char*, Date> table[] = {
        {"2025-03-03T09:05:07.5Z", Date::fromSeconds(march3, 500'000'000)},
        {"2025-03-03T09:05:07.1234567895Z", Date::fromSeconds(march3, 123'456'790)},
        {"2025-03-03T09:05:07.9999999996Z", Date::fromSeconds(march3 + 1)},
        {"1969-12-31T23:59:59.9999999996Z", Date()},
    };
    for (const auto& [text, date] : table)
        EXPECT_EQ(dateFromText(text), date) << text;
}

TEST(DateTextTest, refusesWhatIsNoSuchDate) {
    std::istringstream wrong(R"(
        Z 2025-03-03 2025-03-03T09:05:07 2025-03-03T09:05:07.Z 2025-03-03T09:05:07.5 2025-03-03T09:05:07.5Zz
        2025-03-03T09:05:07ZZ 2025-03-03t09:05:07z 2025-03-03T09:05:07+00:00 2025-02-29T00:00:00Z 2025-13-01T00:00:00Z
        2025-00-01T00:00:00Z 2025-03-03T24:00:00Z 2025-03-03T09:60:00Z 2025-03-03T09:05:60Z 2025-3-03T09:05:07Z
        02025-03-03T09:05:07Z -025-03-03T09:05:07Z 2025-+3-03T09:05:07Z 2025-03-03T09:05:07.-5Z 9999-12-31T23:59:59Z
        2262-04-11T23:47:16.854775808Z 1677-09-21T00:12:43.145224191Z 0001-01-01T00:00:00Z)");
    for (std::string text; wrong >> text;)
        EXPECT_EQ(dateFromText(text), std::nullopt) << text;
    for (const char* text : {"", "2025-03-03 09:05:07Z", " 2025-03-03T09:05:07Z", "2025-03-03T09:05:07.5 Z"})
        EXPECT_EQ(dateFromText(text), std::nullopt) << text;
}

TEST(DateTextTest, readsBackEveryInstantItWrites) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 2000; ++round) {
        const auto date = Date::fromNanoseconds(static_cast<std::int64_t>(random()));
        EXPECT_EQ(dateFromText(dateText(date)), date) << dateText(date);
    }
}

}  // namespace
}  // namespace vostrel
