#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "cleaning/LiveRules.h"
#include "cleaning/RunnerHome.h"
#include "rules/RuleSentences.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CleanupRunnerTest : public testing::Test, protected RunnerHome {
protected:
    void SetUp() override {
        capacity.free = {1'000, 5'000};
        home.makeFile("cache/file");
        rule = ruleOn("cache");
        rule.id = Uuid::random();
        rule.name = "Cache";
        rule.action = CleanupAction::deletePermanently;
        rule.pauseWhileRunning = {"com.apple.dt.Xcode"};
        rule.triggers = {DailyTrigger{9, 30}};
        rule.approval = rule.approvalKey(planner.currentRoots(rule).value(), catalog);
        live.update({{rule.id, rule}}, false);
        present.isPaused = [this] { return live.isPaused(); };
        present.currentRule = [this] { return live.rule(rule.id); };
    }
    [[nodiscard]] RunReport run(RunTrigger trigger) { return runner.run(rule, trigger, present, control); }
    [[nodiscard]] RunReport run(const CleanupPlan& plan) { return runner.run(rule, plan, present, control); }
    void expectSkipped(const RunReport& report, RunSkipReason reason, const std::vector<std::string>& messages = {}) {
        EXPECT_EQ(report.status, RunStatus::skipped);
        EXPECT_EQ(report.skipReason, reason);
        EXPECT_EQ(report.messages, messages);
        EXPECT_THAT(operations.touched, IsEmpty());
        EXPECT_EQ(home.names("cache"), std::vector<std::string>{"file"});
    }

    Rule rule;
    LiveRules live;
    CleanupRunner::Present present;
};

TEST_F(CleanupRunnerTest, recordsTheRunBeforeAnythingIsTouchedAndItsEnd) {
    operations.onRemove = [&](const std::filesystem::path&) {
        const auto started = log.recent(1);
        ASSERT_THAT(started, SizeIs(1));
        EXPECT_EQ(started[0].status, RunStatus::started);
        EXPECT_EQ(lock.runInHand(), started[0].id);
        EXPECT_THAT(log.details(started[0].id).plannedPaths, ElementsAre(home / "cache/file"));
    };
    const auto report = run(RunTrigger::schedule);
    EXPECT_EQ(report.status, RunStatus::finished);
    EXPECT_EQ(report.itemsCleaned, 1);
    EXPECT_EQ(report.freedBytes, 4'000);
    EXPECT_THAT(report.messages, IsEmpty());
    EXPECT_THAT(home.names("cache"), IsEmpty());
    EXPECT_EQ(log.withLists(log.recent(5).at(0)), report);
    EXPECT_EQ(lock.runInHand(), std::nullopt);
}

TEST_F(CleanupRunnerTest, skipsAnAutomaticRunForTheFirstReasonThereIs) {
    struct Case {
        RunSkipReason reason;
        std::vector<std::string> messages;
        std::function<void()> change;
    };
    // Each is added to those below it, so that the order shows.
    std::vector<Case> cases{
        {RunSkipReason::disabled, {}, [&] { rule.enabled = false; }},
        {RunSkipReason::paused, {}, [&] { live.update({{rule.id, rule}}, true); }},
        {RunSkipReason::notApproved, {}, [&] { rule.name = "x", rule.filter.minAgeDays = 1; }},
        {RunSkipReason::appRunning, {}, [&] { apps.running = {"com.apple.dt.Xcode"}; }},
        {RunSkipReason::appRunning, {}, [&] { apps.running = std::nullopt; }},
        {RunSkipReason::rootProblem,
         {sentences::folderUnreadable},
         [&] {
             runner.lookup.access = [](const std::string&) {
                 return AccessDecision{UnreadableReason::needsFullDiskAccess};
             };
         }},
        {RunSkipReason::rootProblem,
         {"The folder was replaced. Preview it again."},
         [&] {
             std::filesystem::rename(home / "cache", home / "before");
             home.makeFile("cache/file");
         }},
    };
    for (auto tested = cases.rbegin(); tested != cases.rend(); ++tested) {
        tested->change();
        expectSkipped(run(RunTrigger::schedule), tested->reason, tested->messages);
    }
    EXPECT_THAT(log.recent(10), SizeIs(7)) << "a skipped run is recorded as well";
}

TEST_F(CleanupRunnerTest, runsAPreviewOnlyWhileItHolds) {
    const CleanupPlan seen = plan(rule).value();
    CleanupPlan ofAnother = seen;
    ofAnother.ruleID = Uuid::random();
    expectSkipped(run(ofAnother), RunSkipReason::previewOutdated, {"This preview belongs to another rule."});
    for (const std::chrono::seconds jump : {std::chrono::seconds(-1), std::chrono::seconds(days(-365))}) {
        now = seen.createdAt + jump;
        expectSkipped(run(seen), RunSkipReason::previewExpired,
                      {"This preview is dated ahead of the Mac's clock. Preview the rule again."});
    }
    for (const std::chrono::seconds jump : {std::chrono::seconds(901), std::chrono::seconds(days(3650))}) {
        now = seen.createdAt + jump;
        expectSkipped(run(seen), RunSkipReason::previewExpired);
    }
    now = seen.createdAt + 900s;
    rule.filter.minSizeBytes = 1;
    expectSkipped(run(seen), RunSkipReason::previewOutdated);
    rule.filter.minSizeBytes.reset();
    live.update({}, false);
    expectSkipped(run(seen), RunSkipReason::previewOutdated);
    live.update({{rule.id, rule}}, true);
    rule.approval.reset();
    EXPECT_EQ(run(seen).status, RunStatus::finished) << "the user saw it: neither a pause nor an approval counts";
}

TEST_F(CleanupRunnerTest, saysOfTheRunWhatItCouldNotMeasureOrRecordAndWhyItStopped) {
    const CleanupPlan seen = plan(rule).value();
    capacity.free = {1'000, std::nullopt};
    operations.onRemove = [&](const std::filesystem::path&) {
        Rule edited = rule;
        edited.action = CleanupAction::trash;
        live.update({{rule.id, edited}}, false);
        now = now + 1s;
        log = CleanLog(home / "run.lock" / "no folder");
    };
    const auto report = run(seen);
    EXPECT_EQ(report.status, RunStatus::stopped);
    EXPECT_EQ(report.freedBytes, std::nullopt);
    EXPECT_THAT(report.messages, ElementsAre("Vostrel could not measure free space, so the freed amount is unknown.",
                                             "Stopped because the rule changed.", "The log could not be written."));
    EXPECT_THAT(home.names("cache"), SizeIs(1));
}

TEST_F(CleanupRunnerTest, stopsInTheMiddleOfADeletionWhenThePresentChanges) {
    constexpr int files = 100;
    struct Case {
        const char* sentence;
        std::function<void()> change;
    };
    const auto edit = [&](const std::function<void(Rule&)>& change) {
        Rule edited = rule;
        change(edited);
        live.update({{rule.id, edited}}, false);
    };
    const std::vector<Case> cases{
        {"Stopped because the rule changed.", [&] { edit([](Rule& changed) { changed.filter.minAgeDays = 3; }); }},
        {"Stopped because the rule changed.", [&] { edit([](Rule& changed) { changed.enabled = false; }); }},
        {"Stopped because the rule changed.", [&] { live.update({}, false); }},
        {"Stopped because automatic cleaning was paused.", [&] { live.update({{rule.id, rule}}, true); }},
        {"Stopped because Xcode opened.", [&] { apps.running = {"com.apple.dt.Xcode"}; }},
        {"Stopped before it finished.", [&] { apps.running = std::nullopt; }},
        {"Stopped before it finished.", [&] { control.cancel(); }},
    };
    executor.appCheckInterval = {};
    std::filesystem::remove(home / "cache/file");
    for (const Case& tested : cases) {
        for (int each = 0; each < files; ++each)
            home.makeFile("cache/a/" + std::to_string(each));
        live.update({{rule.id, rule}}, false);
        apps.running.emplace();
        int asked = 0;
        present.currentRule = [&] {
            if (++asked == files / 2) tested.change();
            return live.rule(rule.id);
        };
        const auto report = run(RunTrigger::schedule);
        EXPECT_EQ(report.status, RunStatus::stopped);
        EXPECT_THAT(report.messages, ElementsAre(tested.sentence));
        ASSERT_EQ(report.outcomes.size(), 1U);
        const auto left = std::ssize(home.names("cache/a"));
        EXPECT_GT(left, 0);
        EXPECT_EQ(report.outcomes[0].removedFiles, files - left);
        EXPECT_EQ(report.outcomes[0].message, "Vostrel deleted " + std::to_string(files - left) +
                                                  " files from it, but the run was stopped. The rest is still there.");
    }
}

TEST_F(CleanupRunnerTest, movesChosenItemsToTheTrashThroughTheSameChecks) {
    CleanupPlan chosen = plan(rule).value();
    const auto gated =
        runner.runFinderTrash(chosen, [](const PlannedItem&) { return "It is the last copy."; }, control);
    EXPECT_EQ(gated.itemsLeftAlone, 1);
    EXPECT_EQ(gated.outcomes.at(0).message, "It is the last copy.");
    capacity.free = {1'000, 1'000};
    const auto report = runner.runSpaceTrash(chosen, control);
    EXPECT_EQ(report.action, CleanupAction::trash) << "whatever the plan says";
    EXPECT_EQ(report.outcomes.at(0).status, ItemOutcome::Status::trashed);
    EXPECT_TRUE(std::filesystem::exists(report.outcomes.at(0).trashPath.value()));
}

}  // namespace
}  // namespace vostrel
