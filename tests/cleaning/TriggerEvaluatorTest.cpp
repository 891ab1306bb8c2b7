#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "cleaning/TriggerEvaluator.h"
#include "rules/SampleRules.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::year;
using testing::IsEmpty;
using testing::SizeIs;

Date utc(std::chrono::year_month_day day, std::chrono::minutes time = 0min) {
    return Date::fromSeconds(std::chrono::seconds(std::chrono::sys_days(day).time_since_epoch() + time).count());
}

class TriggerEvaluatorTest : public testing::Test {
protected:
    [[nodiscard]] bool isDue(Date now) const { return !evaluator.due({&rule, 1}, now, schedule).empty(); }
    /// What the host does with a rule that is due.
    bool runs(Date now) {
        TriggerEvaluator::catchUpWithTheClock({&rule, 1}, now, schedule);
        for (const auto& dispatch : evaluator.due({&rule, 1}, now, schedule)) {
            for (const auto& each : dispatch.due)
                schedule.setCountsFrom(now, rule.id, each.trigger);
            return true;
        }
        return false;
    }
    void moveTo(const std::string& zone) { evaluator.calendar = Calendar::ofZone(zone).value(); }

    Rule rule = [] {
        Rule daily = sampleRule();
        daily.triggers = {DailyTrigger{9, 0}};
        daily.createdAt = utc(year(2025) / 6 / 1);
        return daily;
    }();
    ScheduleState schedule;
    TriggerEvaluator evaluator{Calendar::ofZone("Etc/UTC").value()};
};

TEST_F(TriggerEvaluatorTest, countsEachTriggerFromItsOwnRunThenTheRulesThenTheRulesMaking) {
    struct Case {
        const char* what;
        RuleTrigger trigger;
        Date next;
    };
    const std::vector<Case> cases{{"daily", DailyTrigger{9, 0}, utc(year(2025) / 6 / 4, 9h)},
                                  {"on Mondays", WeeklyTrigger{2, 7, 30}, utc(year(2025) / 6 / 2, 7h + 30min)},
                                  {"end of day", EndOfDayTrigger{}, utc(year(2025) / 6 / 2, 18h)}};
    schedule.setCountsFrom(utc(year(2025) / 6 / 4), rule.id, cases[0].trigger);
    schedule.setCountsFrom(utc(year(2025) / 6 / 2), rule.id, cases[1].trigger);
    schedule.setLastRun(utc(year(2025) / 6 / 2), rule.id);
    for (const Case& tested : cases)
        EXPECT_EQ(evaluator.next(rule, tested.trigger, schedule), tested.next) << tested.what;
    EXPECT_EQ(evaluator.next(rule, DailyTrigger{9, 0}, {}), utc(year(2025) / 6 / 1, 9h));
    EXPECT_EQ(evaluator.next(rule, WeeklyTrigger{8, 9, 0}, schedule).error(),
              "A weekly run has a day that does not exist.");
    EXPECT_EQ(evaluator.next(rule, DailyTrigger{24, 0}, schedule).error(), "A run time is not a time of day.");
    EXPECT_EQ(evaluator.next(rule, BelowLineTrigger{}, schedule).error(), "");

    rule.triggers = {WeeklyTrigger{0, 9, 0}, EndOfDayTrigger{}, DailyTrigger{9, 0}};
    const auto due = evaluator.due({&rule, 1}, utc(year(2025) / 6 / 9), schedule);
    ASSERT_THAT(due, SizeIs(1));
    EXPECT_EQ(due[0].occurrence, utc(year(2025) / 6 / 2, 18h));
    EXPECT_THAT(due[0].due, SizeIs(2));
    rule.enabled = false;
    EXPECT_FALSE(isDue(utc(year(2025) / 6 / 9)));
}

TEST_F(TriggerEvaluatorTest, neitherWaitsForEverNorRunsTwiceWhenTheClockWasSetBack) {
    ASSERT_TRUE(runs(utc(year(2025) / 6 / 1, 9h)));
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 1, 7h)));
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 1, 9h))) << "it ran at this time already";
    ASSERT_TRUE(runs(utc(year(2035) / 1 / 1, 9h)));
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 1, 10h)));
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 2, 8h + 59min)));
    EXPECT_TRUE(runs(utc(year(2025) / 6 / 2, 9h)));
    rule.createdAt = utc(year(2035) / 1 / 1);
    schedule = {};
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 2, 10h)));
    EXPECT_TRUE(runs(utc(year(2025) / 6 / 3, 10h)));
}

TEST_F(TriggerEvaluatorTest, goesByTheClocksOfThePlaceItTravelsTo) {
    moveTo("Europe/Berlin");
    EXPECT_TRUE(runs(utc(year(2025) / 6 / 1, 7h)));
    moveTo("America/New_York");
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 1, 12h + 59min)));
    EXPECT_TRUE(runs(utc(year(2025) / 6 / 1, 13h)));
    moveTo("Asia/Tokyo");
    EXPECT_FALSE(runs(utc(year(2025) / 6 / 1, 23h + 59min)));
    EXPECT_TRUE(runs(utc(year(2025) / 6 / 2)));
}

TEST_F(TriggerEvaluatorTest, runsOnceForEachDayOnWhichItIsEvaluated) {
    struct Year {
        const char* zone;
        int year;
    };
    const Year years[] = {{"Europe/Berlin", 2025},     {"America/Sao_Paulo", 2018}, {"Australia/Lord_Howe", 2025},
                          {"Africa/Casablanca", 2025}, {"Asia/Kathmandu", 2025},    {"Pacific/Chatham", 2025},
                          {"America/New_York", 2025}};
    for (int round = 0; round < test::rounds(1); ++round) {
        for (const Year& tested : years) {
            std::mt19937 random(static_cast<unsigned>(round));
            moveTo(tested.zone);
            const std::chrono::minutes time(round == 0 ? 150 : random() % 1440);
            rule.triggers = {DailyTrigger{static_cast<int>(time.count() / 60), static_cast<int>(time.count() % 60)}};
            rule.createdAt = utc(year(tested.year) / 1 / 1, 12h);
            schedule = {};
            const auto wall = [&](Date now) { return evaluator.calendar.wallTime(now); };
            const auto dayShown = [&](Date now) { return std::chrono::floor<days>(wall(now) - time); };
            // Clocks that were set back show a time again that came before.
            const auto dayAt = [&](Date now) {
                auto day = dayShown(now);
                const bool wereSetBack = wall(now) - wall(now - 2h) < 2h;
                for (auto back = 1min; wereSetBack && back < 2h; ++back)
                    day = std::max(day, dayShown(now - back));
                return day;
            };
            auto lastDay = dayAt(rule.createdAt);
            for (Date now = rule.createdAt; now < utc(year(tested.year + 1) / 1 / 2);) {
                // Now and then the machine sleeps for up to two days.
                now = now + std::chrono::minutes(1 + random() % (random() % 50 == 0 ? 2'880 : 120));
                const bool isNewDay = dayAt(now) > lastDay;
                ASSERT_EQ(runs(now), isNewDay) << tested.zone << " round " << round << " at " << now.seconds();
                if (isNewDay) lastDay = dayAt(now);
            }
        }
    }
}

}  // namespace
}  // namespace vostrel
