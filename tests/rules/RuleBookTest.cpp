#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "SampleRules.h"
#include "rules/RuleBook.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const PresetCatalog catalog = sampleCatalog();

Rule named(const char* name) {
    Rule rule = sampleRule();
    rule.id = Uuid::random();
    rule.name = name;
    return rule;
}

std::string order(const RuleBook& book) {
    std::string names;
    for (const Rule& rule : book.rules)
        names += rule.name;
    return names;
}

TEST(RuleBookTest, approvesAPreviewFromAMinuteAheadOfTheClockToAQuarterOfAnHourOld) {
    const std::pair<Duration, bool> table[] = {{0s, true},   {900s, true},        {900s + 1ns, false}, {901s, false},
                                               {-60s, true}, {-60s - 1ns, false}, {-61s, false},       {-59s, true}};
    for (const auto& [age, approves] : table) {
        const Rule rule = sampleRule();
        RuleBook book({rule});
        const CleanupPlan plan = samplePlan(rule);
        const Date now = plan.createdAt + age;
        EXPECT_EQ(plan.isApprovable(now), approves) << age.count();
        EXPECT_EQ(book.approvePreview(rule, plan, catalog, now), approves) << age.count();
        EXPECT_EQ(book.rules.front().approval.has_value(), approves) << age.count();
    }
}

TEST(RuleBookTest, refusesToApproveWhatWasNotPreviewed) {
    const Rule rule = sampleRule();
    const auto refuses = [&](RuleBook book, const Rule& previewed, const CleanupPlan& plan) {
        const RuleBook before = book;
        return !book.approvePreview(previewed, plan, catalog, sampleNow) && book == before;
    };
    CleanupPlan withoutRoots = samplePlan(rule);
    withoutRoots.roots.clear();
    Rule edited = rule;
    edited.filter.minAgeDays = 7;

    EXPECT_TRUE(refuses(RuleBook({rule}), rule, withoutRoots));
    EXPECT_TRUE(refuses(RuleBook({rule}), rule, samplePlan(named("another"))));
    EXPECT_TRUE(refuses(RuleBook(), rule, samplePlan(rule)));
    EXPECT_TRUE(refuses(RuleBook({edited}), rule, samplePlan(rule))) << "edited while the preview was shown";
}

TEST(RuleBookTest, anApprovalHoldsUntilSomethingThatItCapturedChanges) {
    Rule rule = sampleRule();
    rule.target = PresetTarget{"each-item"};
    const CleanupPlan plan = samplePlan(rule);
    RuleBook book({rule});
    ASSERT_TRUE(book.approvePreview(rule, plan, catalog, sampleNow));
    const Rule approved = book.rules.front();

    struct Edit {
        const char* what;
        bool keeps;
        std::function<void(Rule&)> apply;
    };
    const Edit edits[] = {
        {"nothing", true, [](Rule&) {}},
        {"name", true, [](Rule& edited) { edited.name = "Another name"; }},
        {"enabled", true, [](Rule& edited) { edited.enabled = false; }},
        {"a manual trigger", true, [](Rule& edited) { edited.triggers.emplace_back(ManualTrigger{}); }},
        {"blanks in the pause list", true, [](Rule& edited) { edited.pauseWhileRunning.emplace_back(" "); }},
        {"target", false, [](Rule& edited) { edited.target = PresetTarget{"any-depth"}; }},
        {"filter", false, [](Rule& edited) { edited.filter.minAgeDays = 29; }},
        {"action", false, [](Rule& edited) { edited.action = CleanupAction::deletePermanently; }},
        {"trigger time", false, [](Rule& edited) { edited.triggers = {DailyTrigger{9, 6}}; }},
        {"another trigger", false, [](Rule& edited) { edited.triggers.emplace_back(BelowLineTrigger{}); }},
        {"pause list", false, [](Rule& edited) { edited.pauseWhileRunning.clear(); }},
    };
    for (const Edit& edit : edits) {
        Rule edited = approved;
        edit.apply(edited);
        EXPECT_EQ(edited.approval == edited.approvalKey(plan.rootIdentities(), catalog), edit.keeps) << edit.what;
    }

    EXPECT_NE(approved.approval, approved.approvalKey({{"VOLUME", 43}}, catalog)) << "another folder at the same path";
    EXPECT_NE(approved.approval, approved.approvalKey(plan.rootIdentities(), PresetCatalog())) << "the preset is gone";
    Preset revised = *catalog.preset("each-item");
    revised.excludePatterns = {"fuzz"};
    EXPECT_NE(approved.approval, approved.approvalKey(plan.rootIdentities(), PresetCatalog({revised})));
    ApprovalKey legacy = approved.approvalKey(plan.rootIdentities(), catalog);
    EXPECT_EQ(approved.approval, legacy);
    legacy.rootFileID = JSONValue(42);
    EXPECT_NE(approved.approval, legacy) << "a key of an earlier version";
}

TEST(RuleBookTest, definesWhatATargetStandsFor) {
    EXPECT_EQ(definition(FolderTarget{"/a"}, catalog), "folder");
    EXPECT_EQ(definition(PresetTarget{"gone"}, catalog), "preset:gone;unknown");
    EXPECT_EQ(
        definition(PresetTarget{"own-names"}, catalog),
        R"(preset:own-names;{"ageBasis":"modified","excludePatterns":[],"minAgeDays":null,"namePatterns":["*.log"],)"
        R"("scope":"topLevelItems","semanticsRevision":1,)"
        R"("sources":[{"path":"Library/Caches/each-item","type":"home"}],"trashOnly":false})");
    EXPECT_EQ(definition(ProjectScanTarget{{"/code"}, {ArtifactKind::venv, ArtifactKind::nodeModules}, 30}, catalog),
              R"(projectScan;{"nodeModules":"node_modules","venv":".venv"})");
}

TEST(RuleBookTest, movesRulesAsAListDoes) {
    const std::vector<Rule> rules{named("a"), named("b"), named("c"), named("d")};
    struct Move {
        std::set<std::size_t> places;
        std::size_t target;
        const char* result;
    };
    const Move table[] = {{{0}, 0, "abcd"}, {{0}, 1, "abcd"},    {{0}, 2, "bacd"},    {{0}, 4, "bcda"},
                          {{3}, 0, "dabc"}, {{0, 2}, 4, "bdac"}, {{1, 3}, 2, "abdc"}, {{9}, 9, "abcd"}};
    for (const auto& [places, target, result] : table) {
        RuleBook book(rules);
        book.move(places, target);
        EXPECT_EQ(order(book), result);
    }
}

TEST(RuleBookTest, addsUpdatesAndRemovesById) {
    const Rule first = named("a");
    Rule second = named("b");
    RuleBook book({first});
    EXPECT_TRUE(book.add(second));
    EXPECT_FALSE(book.add(second));
    second.name = "c";
    EXPECT_TRUE(book.update(second, sampleNow));
    EXPECT_FALSE(book.update(named("d"), sampleNow));
    EXPECT_EQ(order(book), "ac");
    EXPECT_TRUE(book.remove(first.id));
    EXPECT_FALSE(book.remove(first.id));
    EXPECT_EQ(order(book), "c");

    book.unreadableRules = {JSONValue("bad")};
    EXPECT_EQ(book.unreadableCount(), 1);
    book.discardUnreadableRules();
    EXPECT_EQ(book.unreadableCount(), 0);
}

TEST(RuleBookTest, nothingOverdueStartsWhenARuleIsEnabledApprovedOrGivenOtherTriggers) {
    const Date longAgo = sampleNow - 1000h;
    const RuleTrigger daily = DailyTrigger{9, 5};
    const RuleTrigger weekly = WeeklyTrigger{2, 9, 5};
    Rule rule = sampleRule();
    rule.triggers = {daily, weekly, EndOfDayTrigger{}, BelowLineTrigger{}};
    RuleBook book({rule});
    book.schedule.setLastRun(longAgo, rule.id);

    rule.name = "Renamed";
    ASSERT_TRUE(book.update(rule, sampleNow));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, daily), longAgo) << "another name changes no time";

    rule.triggers = {EndOfDayTrigger{}, ManualTrigger{}, weekly, daily};
    ASSERT_TRUE(book.update(rule, sampleNow));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, daily), longAgo) << "nor does another order, or one without a time";

    rule.triggers = {daily, weekly, EndOfDayTrigger{}, WeeklyTrigger{3, 9, 5}};
    ASSERT_TRUE(book.update(rule, sampleNow));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, daily), sampleNow);
    EXPECT_EQ(book.schedule.lastRunOf(rule.id), longAgo) << "when it last ran stays true";

    rule.enabled = false;
    ASSERT_TRUE(book.update(rule, sampleNow + 1h));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, daily), sampleNow);
    rule.enabled = true;
    ASSERT_TRUE(book.update(rule, sampleNow + 2h));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, weekly), sampleNow + 2h);

    ASSERT_TRUE(book.approvePreview(rule, samplePlan(rule), catalog, sampleNow + 5min));
    std::vector<std::string> keys;
    for (const auto& [key, date] : book.schedule.lastRun) {
        keys.push_back(key);
        EXPECT_EQ(date, key == rule.id.text() ? longAgo : sampleNow + 5min) << key;
    }
    EXPECT_THAT(keys, ElementsAre(rule.id.text(), rule.id.text() + "/daily:09:05", rule.id.text() + "/endOfDay",
                                  rule.id.text() + "/weekly:2:09:05", rule.id.text() + "/weekly:3:09:05"));
    EXPECT_TRUE(book.remove(rule.id));
    EXPECT_TRUE(book.schedule.lastRun.empty());
}

}  // namespace
}  // namespace vostrel
