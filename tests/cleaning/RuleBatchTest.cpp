#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cleaning/CleanNowEstimates.h"
#include "cleaning/LiveRules.h"
#include "cleaning/RuleAutomation.h"
#include "cleaning/RunnerHome.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::vector<RuleTrigger> belowLine{BelowLineTrigger{}};

class RuleBatchTest : public testing::Test, protected RunnerHome {
protected:
    [[nodiscard]] RuleBatch::Result run(const RuleBatch::Work& work, const std::vector<Rule>& rules,
                                        bool isPaused = false) {
        std::map<Uuid, Rule> newest;
        for (const Rule& rule : rules)
            newest.emplace(rule.id, rule);
        live.update(std::move(newest), isPaused);
        return batch.run(work, batchControl);
    }
    [[nodiscard]] static std::vector<std::string> names(const std::vector<Rule>& rules) {
        std::vector<std::string> names;
        for (const Rule& rule : rules)
            names.push_back(rule.name);
        return names;
    }
    [[nodiscard]] std::vector<std::string> touchedFolders() const {
        std::vector<std::string> folders;
        for (const std::string& path : operations.touched)
            folders.push_back(path.substr(0, path.find('/')));
        return folders;
    }
    [[nodiscard]] Rule presetRule(std::string_view preset, CleanupAction action) const {
        Rule rule = ruleOf(preset);
        rule.id = Uuid::random();
        rule.action = action;
        rule.triggers = belowLine;
        rule.approval = rule.approvalKey({}, catalog);
        return rule;
    }

    LiveRules live;
    BatchControl batchControl;
    std::set<std::string> elsewhere;
    RuleBatch batch{.runner = runner,
                    .live = live,
                    .log = log,
                    .session = {.runner = runner,
                                .reader = capacity,
                                .volume = home.path(),
                                .isOnMeasuredVolume = [this](const std::filesystem::path& folder) {
                                    return !elsewhere.contains(folder.filename());
                                }}};
};

TEST_F(RuleBatchTest, cleansForLowSpaceOnlyUntilEnoughIsFree) {
    struct Case {
        const char* what;
        std::vector<std::optional<std::int64_t>> free;
        std::vector<std::string> touched;
        std::optional<std::int64_t> freeAfter;
        bool endsBelow;
    };
    // Free space is read around each run as well: at the session's start, before and after the removal, at its end.
    const std::vector<Case> cases{
        {"enough by the first rule", {10, 10, 100, 100}, {"a"}, 100, false},
        {"never enough", {10}, {"a", "b"}, 10, true},
        {"enough by then", {100}, {}, 100, false},
        {"no longer known", {10, 10, 10, std::nullopt}, {"a"}, std::nullopt, false},
    };
    const auto request = ThresholdRequest::upToTheLine(10, 100);
    for (const Case& tested : cases) {
        operations.touched.clear();
        const std::vector<Rule> rules{approvedRule("a", belowLine), approvedRule("b", belowLine),
                                      approvedRule("scheduled only", {EndOfDayTrigger{}})};
        capacity.free = tested.free;
        const auto result = run(RuleBatch::Unattended{{}, request, rules}, rules);
        EXPECT_EQ(touchedFolders(), tested.touched) << tested.what;
        EXPECT_EQ(result.session->freeAfter, tested.freeAfter) << tested.what;
        EXPECT_EQ(result.session->countedBytes > 0, !tested.touched.empty()) << tested.what;
        const auto finish = RuleBatch::finishUnattended(result, request, "Caches grew most.");
        EXPECT_EQ(finish.endedBelowLine, tested.endsBelow) << tested.what;
        EXPECT_EQ(finish.summary.has_value(), !tested.touched.empty()) << tested.what;
        if (!tested.endsBelow) continue;
        EXPECT_EQ(finish.summary->title, "Still below your line");
        EXPECT_THAT(finish.summary->body, testing::EndsWith("Caches grew most."));
    }
}

TEST_F(RuleBatchTest, takesWhatComesBackByItselfFirstAndLeavesOtherDisksAlone) {
    home.makeFile(".cache/pip/http/x");
    home.makeFile(".cache/puppeteer/x");
    home.makeFile(".npm/_cacache/x");
    std::vector<Rule> rules{approvedRule("first", belowLine),
                            approvedRule("more", belowLine),
                            approvedRule("trash", belowLine, [](Rule& rule) { rule.action = CleanupAction::trash; }),
                            approvedRule("other disk", belowLine),
                            approvedRule("off", belowLine, [](Rule& rule) { rule.enabled = false; }),
                            approvedRule("approved before", belowLine),
                            approvedRule("gone", belowLine),
                            presetRule("puppeteer-browsers", CleanupAction::deletePermanently),
                            presetRule("npm-cache", CleanupAction::trash),
                            presetRule("pip-cache", CleanupAction::deletePermanently)};
    rules[5].filter.minSizeBytes = 1;
    std::filesystem::remove_all(home / "gone");
    elsewhere = {"other disk"};
    auto report = RunReport::skipped(rules[1], RunTrigger::manual, RunSkipReason::disabled, now);
    report.status = RunStatus::finished;
    report.movedToTrashBytes = 5;
    ASSERT_TRUE(log.append(report));
    EXPECT_THAT(names(batch.session.ordered(rules)),
                ElementsAre(rules[9].name, rules[8].name, rules[7].name, "more", "first", "trash"));

    const auto shares = sharesSpaceWith(home.path());
    EXPECT_TRUE(shares(home / "first"));
    EXPECT_FALSE(shares(home / "gone"));
    EXPECT_FALSE(shares("/proc"));
}

TEST_F(RuleBatchTest, reportsOnEveryRuleAndStopsAsAWholeOrRuleByRule) {
    const std::vector<Rule> rules{approvedRule("a", {WhenAppQuitsTrigger{"org.app"}}),
                                  approvedRule("b", {WhenAppQuitsTrigger{"org.app"}}),
                                  approvedRule("c", {WhenAppQuitsTrigger{"org.app"}, BelowLineTrigger{}})};
    batchControl.cancel(rules[0].id);
    operations.onRemove = [&](const std::filesystem::path&) { batchControl.cancel(); };
    std::vector<std::string> heard;
    batch.progress = [&](const Rule& rule, const PlannedItem&) { heard.push_back(rule.name); };
    const auto result = run(RuleBatch::AppQuit{rules}, rules);
    EXPECT_THAT(heard, ElementsAre("b"));
    ASSERT_THAT(result.reports, SizeIs(3));
    EXPECT_EQ(result.reports[0].skipReason, RunSkipReason::stopped);
    EXPECT_NE(result.reports[1].status, RunStatus::skipped);
    EXPECT_EQ(result.reports[2].skipReason, RunSkipReason::stopped);
    EXPECT_EQ(result.reports[2].trigger, RunTrigger::appQuit);

    const auto session = run(RuleBatch::Unattended{{}, ThresholdRequest::upToTheLine(1, 9'999), rules}, rules).session;
    EXPECT_TRUE(session->interrupted);
    EXPECT_THAT(session->reports, IsEmpty());
    EXPECT_EQ(session->freeAfter, std::nullopt);
}

TEST_F(RuleBatchTest, runsPreviewsChosenItemsAndAllRulesForTheUserEvenWhilePaused) {
    const std::vector<Rule> rules{approvedRule("a", {}), approvedRule("b", {DailyTrigger{}}), approvedRule("c", {})};
    const auto expectRun = [&](const RuleBatch::Work& work, RunTrigger trigger, int items) {
        const auto reports = run(work, rules, true).reports;
        ASSERT_THAT(reports, SizeIs(1));
        EXPECT_EQ(reports[0].trigger, trigger);
        EXPECT_EQ(reports[0].itemsCleaned, items);
    };
    expectRun(RuleBatch::Previewed{rules[0], plan(rules[0]).value()}, RunTrigger::manual, 1);
    expectRun(RuleBatch::CleanNow{{rules[1]}}, RunTrigger::cleanNow, 1);
    expectRun(RuleBatch::SpaceTrash{plan(rules[2]).value()}, RunTrigger::manual, 1);
    home.makeFile("c/file");
    expectRun(RuleBatch::FinderTrash{plan(rules[2]).value(), [](const PlannedItem&) { return "It stays."; }},
              RunTrigger::manual, 0);
    home.makeFile("b/file");
    const auto paused = run(RuleBatch::Unattended{{rules[1]}, {}, {}}, rules, true);
    EXPECT_EQ(paused.reports.at(0).skipReason, RunSkipReason::paused);
}

class RuleAutomationTest : public RuleBatchTest {
protected:
    [[nodiscard]] AutomationDecision decide(Duration after) {
        now = begin + after;
        situation.now = now;
        return automation.decide(situation, runner, book);
    }
    void add(const Rule& rule) {
        book.add(rule);
        book.schedule.setLastRun(begin, rule.id);
    }
    void finish(const AutomationDecision& decision) {
        RuleBatch::Unattended work;
        for (const auto& each : decision.scheduled)
            work.scheduled.push_back(each.rule);
        if (decision.startThreshold) work.session = ThresholdRequest::upToTheLine(10, 100);
        work.rules = book.rules;
        RuleAutomation::finish(decision, run(work, book.rules), work.session, now, book);
    }

    Date begin = Date::fromSeconds(now.seconds() / 86'400 * 86'400);
    RuleBook book;
    RuleAutomation automation{.evaluator = {Calendar::ofZone("Etc/UTC").value()}};
    RuleAutomation::Situation situation{.settings = AppSettings(), .reading = std::nullopt, .now = begin};
};

TEST_F(RuleAutomationTest, runsADueRuleOnceAndUsesUpWhatIsSkipped) {
    add(approvedRule("a", {DailyTrigger{9, 0}}));
    EXPECT_THAT(decide(8h + 59min).scheduled, IsEmpty());
    const auto due = decide(12h);
    ASSERT_THAT(due.scheduled, SizeIs(1));
    EXPECT_EQ(due.scheduled[0].occurrence, begin + 9h);
    EXPECT_THAT(decide(12h).scheduled, IsEmpty()) << "even if the program is killed before the run";
    finish(due);
    EXPECT_EQ(book.schedule.lastRunOf(book.rules[0].id), now);
    EXPECT_THAT(home.names("a"), IsEmpty());

    situation.settings.reset();
    const auto paused = decide(36h);
    ASSERT_THAT(paused.skips, SizeIs(1));
    EXPECT_EQ(paused.skips[0].skipReason, RunSkipReason::paused);
    situation.settings = AppSettings();
    const auto after = decide(36h + 1min);
    EXPECT_TRUE(after.scheduled.empty() && after.skips.empty());
}

TEST_F(RuleAutomationTest, leavesARuleDueWhileItWaitsAndSaysSoOnce) {
    add(approvedRule("a", {DailyTrigger{9, 0}}, [](Rule& rule) { rule.pauseWhileRunning = {"org.app"}; }));
    const auto due = decide(12h);
    apps.running = {"org.app"};
    finish(due);  // which the runner records
    EXPECT_THAT(log.recent(9), SizeIs(1));
    EXPECT_THAT(decide(12h + 1min).skips, IsEmpty());
    std::filesystem::remove_all(home / "Log");
    automation = {.evaluator = automation.evaluator};
    EXPECT_THAT(decide(12h + 2min).skips, SizeIs(1));
    EXPECT_THAT(decide(12h + 3min).skips, IsEmpty());
    apps.running.emplace();
    const auto locked = lock.withLock(Uuid::random(), [&] { return decide(12h + 4min); });
    EXPECT_TRUE(locked->scheduled.empty() && locked->skips.empty());
    const auto free = decide(12h + 5min);
    ASSERT_THAT(free.scheduled, SizeIs(1));
    Rule edited = book.rules[0];
    edited.triggers = {DailyTrigger{10, 0}};
    ASSERT_TRUE(book.update(edited, now));
    apps.running = {"org.app"};
    finish(free);
    apps.running.emplace();
    EXPECT_THAT(decide(12h + 6min).scheduled, IsEmpty()) << "its new time counts from the edit";
}

TEST_F(RuleAutomationTest, cleansForLowSpaceOnlyWhereARuleWaitsForIt) {
    situation.reading = MonitorReading{{1'000, 10}, SpaceLevel::critical, 100, {}};
    EXPECT_FALSE(decide(0s).startThreshold);
    EXPECT_FALSE(decide(1s).startThreshold);
    add(approvedRule("a", belowLine));
    EXPECT_FALSE(decide(2s).startThreshold);
    const auto decision = decide(3s);
    ASSERT_TRUE(decision.startThreshold);
    capacity.free = {10};
    finish(decision);
    EXPECT_THAT(home.names("a"), IsEmpty());
    EXPECT_EQ(book.schedule.lastThresholdSession, begin + 3s);
    EXPECT_EQ(book.schedule.thresholdLatchedAt, begin + 3s);
    AppSettings settings;
    settings.hysteresisGigabytes = 1.5;
    EXPECT_EQ(RuleAutomation::hysteresisBytes(settings), 1'500'000'000);
}

class CleanNowEstimatesTest : public RuleBatchTest {};

TEST_F(CleanNowEstimatesTest, sayOfEachRuleWhatItWouldFreeOrWhyNot) {
    struct Case {
        std::function<void(Rule&, CleanNowEstimates::Plan&)> change;
        std::optional<CleanNowEstimate> estimate;
    };
    const auto set = [](auto member, auto value) {
        return [=](Rule&, CleanNowEstimates::Plan& plan) { *plan.*member = value; };
    };
    const std::vector<Case> cases{
        {[](Rule&, CleanNowEstimates::Plan& plan) { plan->items[0].bytes = 1'500'000'000; },
         EstimateUpTo{"up to 1.5 GB"}},
        {set(&CleanupPlan::items, std::vector<PlannedItem>()), EstimateNothing{}},
        {set(&CleanupPlan::limitedDates, true), EstimatePreviewOnly{}},
        {[](Rule&, CleanNowEstimates::Plan& plan) { plan->roots[0].identity.inode += 1; },
         EstimateNotIncluded{"The folder was replaced. Preview it again."}},
        {[](Rule& rule, CleanNowEstimates::Plan&) { rule.enabled = false; },
         EstimateNotIncluded{"Not run. The rule is off."}},
        {[](Rule& rule, CleanNowEstimates::Plan&) { rule.filter.minAgeDays = 3; },
         EstimateNotIncluded{"Not run. Preview the rule and approve it first."}},
        {[](Rule&, CleanNowEstimates::Plan& plan) {
             plan = std::unexpected(PlanError::of(PlanError::Kind::rootNotDirectory));
         },
         EstimateNotIncluded{"The rule points at a file, not a folder."}},
        {[](Rule&, CleanNowEstimates::Plan& plan) {
             plan = std::unexpected(PlanError::of(PlanError::Kind::cancelled));
         },
         std::nullopt},
    };
    CleanNowEstimates estimates;
    std::vector<Rule> rules;
    for (const Case& tested : cases) {
        Rule& rule = rules.emplace_back(approvedRule("a", {}));
        CleanNowEstimates::Plan made = plan(rule);
        tested.change(rule, made);
        EXPECT_FALSE(estimates.allEstimated(rules));
        estimates.add(rule, catalog, [&] { return made; });
        const auto found = estimates.entries.find(rule.id);
        EXPECT_EQ(found == estimates.entries.end() ? std::nullopt : std::optional(found->second), tested.estimate);
    }
    EXPECT_FALSE(estimates.allEstimated(rules)) << "the last plan was cancelled";
    rules.pop_back();
    EXPECT_TRUE(estimates.allEstimated(rules));
    EXPECT_THAT(estimates.runnable(rules), ElementsAre(rules[0]));
}

}  // namespace
}  // namespace vostrel
