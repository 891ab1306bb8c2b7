#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "monitor/AlertTracker.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t GB = 1'000'000'000;
constexpr std::int64_t total = 500 * GB;

std::int64_t tenths(std::int64_t gigabytes) {
    return gigabytes * GB / 10;
}

TEST(AlertTrackerTest, tellsOfALevelOnceUntilSpaceHasRecovered) {
    const SpaceLine level = SpaceLine::percent(20);
    AlertTracker tracker({level, level});
    const std::pair<std::int64_t, bool> readings[] = {
        {tenths(1000), false},  // exactly the threshold
        {tenths(999), true},   {tenths(900), false},  {tenths(1005), false},
        {tenths(990), false},  {tenths(1010), false}, {tenths(990), true},
    };
    for (const auto& [free, isTold] : readings)
        EXPECT_EQ(tracker.update(free, total), std::vector(isTold ? 1 : 0, level)) << free;
}

TEST(AlertTrackerTest, tellsOfTheGravestLevelFirst) {
    const auto p20 = SpaceLine::percent(20);
    const auto g100 = SpaceLine::gigabytes(100);
    const auto p5 = SpaceLine::percent(5);
    EXPECT_THAT(AlertTracker({p20, p5, g100}).update(1, total), ElementsAre(p5, p20, g100));
    EXPECT_THAT(AlertTracker({g100, p20}).update(1, total), ElementsAre(g100, p20));
}

TEST(AlertTrackerTest, newLevelsDoNotTellOfWhatIsLongSo) {
    const auto p20 = SpaceLine::percent(20);
    const auto p10 = SpaceLine::percent(10);
    const auto p15 = SpaceLine::percent(15);
    AlertTracker tracker({p10});
    EXPECT_THAT(tracker.update(45 * GB, total), ElementsAre(p10));
    tracker.setLevels({p20, p10, p15}, 75 * GB, total);
    EXPECT_THAT(tracker.update(74 * GB, total), ElementsAre(p15)) << "it was armed at its very threshold";
    EXPECT_THAT(tracker.update(101 * GB, total), IsEmpty());
    EXPECT_THAT(tracker.update(45 * GB, total), ElementsAre(p10, p15, p20));
    tracker.setLevels({p10}, 200 * GB, total);
    EXPECT_THAT(tracker.update(45 * GB, total), IsEmpty()) << "a level that stays is not armed anew";
}

}  // namespace
}  // namespace vostrel
