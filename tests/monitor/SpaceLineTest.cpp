#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "monitor/SpaceLevel.h"
#include "monitor/SpaceLine.h"

namespace vostrel {
namespace {

constexpr std::int64_t GB = 1'000'000'000;
using enum SpaceLineUnit;

TEST(SpaceLineTest, staysWithinItsLimits) {
    for (const double low : std::initializer_list<double>{0.2, -INFINITY, NAN})
        EXPECT_EQ(SpaceLine::gigabytes(low).value(), 1) << low;
    EXPECT_EQ(SpaceLine::gigabytes(4000.1).value(), 4000);
    EXPECT_EQ(SpaceLine::percent(INFINITY).value(), 50);
    EXPECT_EQ(SpaceLine::percent(2.5).value(), 2.5);
}

TEST(SpaceLineTest, isAnAmountInBytes) {
    EXPECT_EQ(SpaceLine::gigabytes(2.5).bytes(0), 2'500'000'000);
    EXPECT_EQ(SpaceLine::percent(1).bytes(150), 2) << "to the nearest byte";
    EXPECT_EQ(SpaceLine::percent(50).bytes(-5), 0);
    EXPECT_EQ(SpaceLine::percent(50).bytes(INT64_MAX), std::int64_t{1} << 62);
}

TEST(SpaceLineTest, saysTheSameInTheOtherUnit) {
    const std::tuple<SpaceLine, SpaceLineUnit, std::int64_t, SpaceLine> table[] = {
        {SpaceLine::percent(20), gigabytes, 494 * GB, SpaceLine::gigabytes(98.8)},
        {SpaceLine::gigabytes(20), percent, 494 * GB, SpaceLine::percent(4)},
        {SpaceLine::gigabytes(20), gigabytes, 0, SpaceLine::gigabytes(20)},
        {SpaceLine::gigabytes(20), percent, 0, SpaceLine::percent(20)},
        {SpaceLine::gigabytes(400), percent, -1, SpaceLine::percent(50)},
        {SpaceLine::gigabytes(400), percent, 500 * GB, SpaceLine::percent(50)},
        {SpaceLine::percent(1), gigabytes, GB, SpaceLine::gigabytes(1)},
    };
    for (const auto& [line, unit, total, same] : table)
        EXPECT_EQ(line.converted(unit, total), same) << line.value();
}

TEST(SpaceLineTest, dividesFreeSpaceIntoLevels) {
    constexpr std::int64_t line = 20 * GB;
    EXPECT_EQ(spaceLevel(line - 1, line), SpaceLevel::critical);
    EXPECT_EQ(spaceLevel(line, line), SpaceLevel::low);
    EXPECT_EQ(spaceLevel(29'900'000'000, line), SpaceLevel::low);
    EXPECT_EQ(spaceLevel(30 * GB, line), SpaceLevel::normal);
    EXPECT_EQ(spaceLevel(0, 0), SpaceLevel::normal);
}

}  // namespace
}  // namespace vostrel
