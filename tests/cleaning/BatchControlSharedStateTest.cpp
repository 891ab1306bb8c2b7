#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "cleaning/BatchSlot.h"
#include "cleaning/LiveRules.h"
#include "rules/SampleRules.h"

namespace vostrel {
namespace {

TEST(BatchControlSharedStateTest, letsManyThreadsStopRulesWhileTheBatchRuns) {
    BatchControl control;
    LiveRules live;
    std::vector<Rule> rules(64, sampleRule());
    for (Rule& rule : rules)
        rule.id = Uuid::random();
    std::atomic<bool> begins = false;
    std::vector<std::jthread> threads;
    for (std::size_t offset = 0; offset < 4; ++offset) {
        threads.emplace_back([&, offset] {
            while (!begins)
                std::this_thread::yield();
            for (std::size_t index = offset; index < rules.size(); index += 2)
                control.cancel(rules[index].id);
            live.update({{rules[offset].id, rules[offset]}}, offset == 0);
            if (offset == 3) control.cancel();
        });
    }
    begins = true;
    for (const Rule& rule : rules) {
        const auto own = control.control(rule.id);
        EXPECT_EQ(own, control.control(rule.id));
        while (!own->isCancelled())
            EXPECT_EQ(live.rule(rule.id).value_or(rule), rule);
    }
    threads.clear();
    EXPECT_TRUE(control.isCancelled());
    EXPECT_TRUE(control.control(Uuid::random())->isCancelled()) << "of a rule whose turn comes later";
}

TEST(BatchSlotTest, holdsOneBatchAndTheApplicationsThatQuitMeanwhile) {
    using Start = BatchSlot::Start;
    BatchSlot slot;
    const Uuid rule = Uuid::random();
    const auto control = slot.begin({rule}, Start::byTheUser, sampleNow);
    EXPECT_EQ(slot.begin({}, Start::unattended, sampleNow), nullptr);
    slot.pauseChanged(true);
    EXPECT_FALSE(control->isCancelled()) << "the user alone stops what the user started";
    const Uuid another = Uuid::random();
    slot.stop(another);
    slot.stop(rule);
    EXPECT_TRUE(control->control(rule)->isCancelled());
    EXPECT_FALSE(control->control(another)->isCancelled() || control->isCancelled());
    slot.stopAll();
    EXPECT_TRUE(control->isCancelled());
    for (const char* app : {"org.b", "org.a", "org.b"})
        slot.appQuitWhileRunning(app);
    EXPECT_EQ(slot.end(), (std::vector<std::string>{"org.b", "org.a"}));
    EXPECT_TRUE(slot.end().empty());

    bool isAsked = false;
    const auto next = slot.begin({}, Start::unattended, sampleNow, [&] { return isAsked; });
    slot.pauseChanged(false);
    EXPECT_FALSE(next->isCancelled());
    isAsked = true;
    EXPECT_TRUE(next->control(rule)->isCancelled()) << "by the host";
    isAsked = false;
    slot.pauseChanged(true);
    EXPECT_TRUE(next->isCancelled());
}

}  // namespace
}  // namespace vostrel
