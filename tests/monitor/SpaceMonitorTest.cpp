#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "monitor/SpaceMonitor.h"

namespace vostrel {
namespace {

using testing::ElementsAre;

constexpr std::int64_t GB = 1'000'000'000;
constexpr std::int64_t total = 500 * GB;

/// Answers with what the test set, and notes whether it was asked for the important figure.
class ScriptedReader : public VolumeCapacityReading {
public:
    std::expected<VolumeCapacity, VolumeCapacityError> read(const std::filesystem::path&,
                                                            ImportantFigure important) const override {
        wasAsked = important == ImportantFigure::included;
        if (failure) return std::unexpected(*failure);
        VolumeCapacity answer = capacity;
        if (!wasAsked) answer.availableImportant.reset();
        return answer;
    }

    VolumeCapacity capacity;
    std::optional<VolumeCapacityError> failure;
    mutable bool wasAsked = false;
};

class SpaceMonitorTest : public testing::Test {
protected:
    MonitorReading tickAt(std::int64_t seconds, SpaceMonitor::Refresh refresh = SpaceMonitor::Refresh::whenDue) {
        return monitor.tick(Date::fromSeconds(seconds), refresh).value();
    }

    ScriptedReader reader;
    SpaceMonitor monitor{reader, "/", AppSettings()};
};

TEST_F(SpaceMonitorTest, asksForTheImportantFigureWhenItIsDue) {
    reader.capacity = {total, 200 * GB, 300 * GB};
    const std::pair<std::int64_t, bool> ticks[] = {{1000, true},  {1299, false}, {1300, true},
                                                   {1310, false}, {1250, true},  {1251, false}};
    for (const auto& [at, isAsked] : ticks) {
        EXPECT_EQ(tickAt(at).capacity, reader.capacity) << "carried forward where it was not asked for";
        EXPECT_EQ(reader.wasAsked, isAsked) << at;
    }
    tickAt(1252, SpaceMonitor::Refresh::forced);
    EXPECT_TRUE(reader.wasAsked);
    reader.capacity = {total, 5 * GB, 15 * GB};
    EXPECT_EQ(tickAt(1253).capacity.displayedFree(), 105 * GB);
    tickAt(1254, SpaceMonitor::Refresh::forced);
    EXPECT_EQ(tickAt(1255).level, SpaceLevel::critical);
    EXPECT_TRUE(reader.wasAsked) << "below the line every time";
}

TEST_F(SpaceMonitorTest, carriesWhatCouldBeClearedAwayForHalfAnHour) {
    reader.capacity = {total, 200 * GB, 300 * GB};
    tickAt(10'000);
    reader.capacity = {total, 210 * GB, std::nullopt};
    const std::pair<std::int64_t, std::optional<std::int64_t>> ticks[] = {
        {11'800, 310 * GB}, {11'801, std::nullopt}, {8'200, 310 * GB}, {8'199, std::nullopt}};
    for (const auto& [at, important] : ticks)
        EXPECT_EQ(tickAt(at).capacity.availableImportant, important) << at;
    reader.capacity.availableNow = 450 * GB;
    EXPECT_EQ(tickAt(10'100).capacity.availableImportant, total) << "never more than there is";
}

TEST_F(SpaceMonitorTest, keepsItsLastReadingWhenOneFails) {
    EXPECT_FALSE(monitor.lastReading());
    reader.capacity = {total, 45 * GB, std::nullopt};
    const MonitorReading first = tickAt(0);
    EXPECT_THAT(first.crossedAlertLevels, ElementsAre(SpaceLine::percent(10), SpaceLine::percent(20)));
    EXPECT_EQ(first.lineBytes, 20 * GB);
    reader.failure = VolumeCapacityError{ENOENT};
    const auto failed = monitor.tick(Date::fromSeconds(1), SpaceMonitor::Refresh::whenDue);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().sentence("/a"), "Could not read the free space of /a: No such file or directory.");
    EXPECT_EQ(monitor.lastReading(), first);
}

}  // namespace
}  // namespace vostrel
