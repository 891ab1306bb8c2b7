#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "cleaning/DeleteStopCheck.h"
#include "cleaning/LiveRules.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;

/// Runs the steps on threads of their own, all at once, many times each.
void together(const std::vector<std::function<void(int)>>& steps) {
    std::vector<std::jthread> threads;
    threads.reserve(steps.size());
    for (const auto& step : steps)
        threads.emplace_back([&step] {
            for (int each = 0; each < test::rounds(2'000); ++each)
                step(each);
        });
}

class CountedApps final : public RunningAppsProviding {
public:
    mutable std::atomic<int> asked = 0;
    std::atomic<bool> isRunning = false;

    [[nodiscard]] std::optional<std::set<std::string>> runningIdentifiers() const override {
        ++asked;
        return isRunning ? std::set<std::string>{"app"} : std::set<std::string>{};
    }
    [[nodiscard]] std::string displayName(const std::string& identifier) const override { return identifier; }
};

TEST(RunControlSharedStateTest, cancelsEveryRunOfABatchWhileTheyLook) {
    const auto batch = std::make_shared<RunControl>();
    const RunControl runs[] = {RunControl(batch), RunControl(batch)};
    std::atomic<int> lookedAgain = 0;
    const auto look = [&](const RunControl& run) {
        return [&](int) { lookedAgain += run.isCancelled() && !run.isCancelled() ? 1 : 0; };
    };
    together({look(runs[0]), look(runs[1]), [&](int each) {
                  if (each == 1'000) batch->cancel();
              }});
    EXPECT_EQ(lookedAgain, 0);
    EXPECT_TRUE(runs[0].isCancelled() && runs[1].isCancelled());
}

TEST(LiveRulesSharedStateTest, givesARuleWholeOrNotAtAllWhileTheRulesAreReplaced) {
    LiveRules live;
    const Uuid id = Uuid::random();
    std::atomic<int> torn = 0;
    const auto write = [&](int each) {
        Rule rule;
        rule.id = id;
        rule.name = std::string(static_cast<std::size_t>(each % 100), 'n');
        rule.pauseWhileRunning = {rule.name};
        live.update(each % 3 == 0 ? std::map<Uuid, Rule>() : std::map<Uuid, Rule>{{id, rule}}, each % 2 == 0);
    };
    const auto read = [&](int) {
        const auto rule = live.rule(id);
        torn += rule && rule->pauseWhileRunning != std::vector{rule->name} ? 1 : 0;
        static_cast<void>(live.isPaused());
    };
    together({write, write, read, read});
    EXPECT_EQ(torn, 0);
}

TEST(DeleteStopCheckSharedStateTest, findsOneReasonForAllThreadsAndAsksNoMoreOftenThanItsInterval) {
    CountedApps apps;
    const RunControl control;
    std::atomic<int> milliseconds = 0;
    const Date start = Date::fromSeconds(1'000);
    DeleteStopCheck check(
        control, {.liveCheck = {}, .pauseWhileRunning = {"app"}, .runningApps = apps, .interval = 500ms, .clock = [&] {
                      return start + std::chrono::milliseconds(milliseconds.load());
                  }});
    std::atomic<int> unlike = 0;
    const auto ask = [&](int each) {
        ++milliseconds;
        if (each == 1'500) apps.isRunning = true;
        const auto reason = check.reason();
        const auto again = check.reason();
        unlike += reason && reason != again ? 1 : 0;
    };
    together({ask, ask, ask});
    EXPECT_EQ(unlike, 0);
    EXPECT_LE(apps.asked, 1 + milliseconds / 500);
    milliseconds += 500;
    EXPECT_EQ(check.reason(), (StopReason{StopReason::Kind::appRunning, "app"}));
}

TEST(RunningAppsSnapshotSharedStateTest, readsOncePerIntervalForAllThreads) {
    CountedApps apps;
    RunningAppsSnapshot snapshot(apps, 500ms);
    const Date start = Date::fromSeconds(1'000);
    const auto ask = [&](int) { static_cast<void>(snapshot.identifiers(start)); };
    together({ask, ask, ask});
    EXPECT_EQ(apps.asked, 1);
    static_cast<void>(snapshot.identifiers(start + 500ms));
    static_cast<void>(snapshot.identifiers(start - 1s));
    EXPECT_EQ(apps.asked, 3) << "a clock that went back does not keep a reading young";
}

}  // namespace
}  // namespace vostrel
