#include <gtest/gtest.h>

#include "cleaning/ThresholdGate.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;

TEST(ThresholdGateTest, startsAtTheSecondReadingInARowThatNothingForbids) {
    struct Step {
        const char* what;
        Duration after;
        std::optional<std::int64_t> free;
        bool starts = false;
        bool isPaused = false;
        std::int64_t line = 100;
    };
    const Step steps[] = {
        {"first below", 0s, 99},
        {"not known", 1s, std::nullopt},
        {"first again", 2s, 99},
        {"at the line", 3s, 100},
        {"first again", 4s, 99},
        {"no line", 5s, -1, false, false, 0},
        {"first again", 6s, 99},
        {"paused", 7s, 99, false, true},
        {"the third", 8s, 99, true},
        {"starts count from none", 9s, 99},
        {"cooling down from the session at 8 s", 3'607s, 99},
        {"an hour later", 3'608s, 99, true},
        {"after it ended below the line at 3,608 s", 7'300s, 99},
        {"latched", 7'301s, 99},
        {"above, but not by 20", 7'302s, 119},
        {"first", 7'303s, 99},
        {"still latched", 7'304s, 99},
        {"well above", 7'305s, 120},
        {"first", 7'306s, 99},
        {"no longer latched", 7'307s, 99, true},
        {"latched from 7,307 s", 7'308s, 99},
        {"for a day", 93'706s, 99},
        {"a day later", 93'707s, 99, true},
        {"a clock set back by a year", -31'536'000s, 99},
        {"does not block for ever", -31'535'999s, 99, true},
    };
    ThresholdGate gate;
    ScheduleState schedule;
    const Date begin = Date::fromSeconds(1'760'000'000);
    for (const Step& step : steps) {
        const Date now = begin + step.after;
        const ThresholdGate::Reading reading{
            .free = step.free, .line = step.line, .hysteresis = 20, .isPaused = step.isPaused};
        EXPECT_EQ(gate.shouldStart(reading, now, schedule), step.starts) << step.what;
        if (!step.starts) continue;
        const bool isFirst = step.after == 8s;
        const std::optional<std::int64_t> freeAfter = isFirst ? std::nullopt : std::optional<std::int64_t>(99);
        EXPECT_EQ(ThresholdGate::finish(now, freeAfter, 100, now, schedule), !isFirst) << step.what;
    }
    EXPECT_FALSE(ThresholdGate::finish(begin, 100, 100, begin, schedule));
}

}  // namespace
}  // namespace vostrel
