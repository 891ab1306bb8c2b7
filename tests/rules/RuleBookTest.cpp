#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SampleRules.h"
#include "rules/RuleBook.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;

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

TEST(RuleBookTest, approvesOnlyAFreshPreviewOfTheRuleAsItIs) {
    const Rule rule = sampleRule();
    const RuleBook book({rule});
    Rule edited = rule;
    edited.filter.minAgeDays = 7;
    const CleanupPlan plan = samplePlan(rule);
    CleanupPlan withoutRoots = plan;
    withoutRoots.roots.clear();
    using Row = std::tuple<RuleBook, CleanupPlan, Duration, bool>;
    for (const auto& [before, preview, age, approves] :
         {Row{book, plan, 900s, true}, Row{book, plan, 900s + 1ns, false}, Row{book, plan, -60s, true},
          Row{book, plan, -60s - 1ns, false}, Row{book, withoutRoots, 0s, false},
          Row{book, samplePlan(named("another")), 0s, false}, Row{RuleBook(), plan, 0s, false},
          Row{RuleBook({edited}), plan, 0s, false}}) {
        RuleBook after = before;
        EXPECT_EQ(after.approvePreview(rule, preview, catalog, preview.createdAt + age), approves) << age.count();
        EXPECT_EQ(after == before, !approves) << age.count();
    }
}

TEST(RuleBookTest, anApprovalHoldsUntilSomethingThatItCapturedChanges) {
    Rule rule = sampleRule();
    rule.target = PresetTarget{"each-item"};
    const auto roots = samplePlan(rule).rootIdentities();
    const ApprovalKey key = rule.approvalKey(roots, catalog);
    using Edit = void (*)(Rule&);
    const std::pair<Edit, bool> table[] = {
        {[](Rule& edited) { edited.name = "Another name"; }, true},
        {[](Rule& edited) { edited.enabled = false; }, true},
        {[](Rule& edited) { edited.triggers.emplace_back(ManualTrigger{}); }, true},
        {[](Rule& edited) { edited.pauseWhileRunning.emplace_back(" "); }, true},
        {[](Rule& edited) { edited.target = PresetTarget{"any-depth"}; }, false},
        {[](Rule& edited) { edited.filter.minAgeDays = 29; }, false},
        {[](Rule& edited) { edited.action = CleanupAction::deletePermanently; }, false},
        {[](Rule& edited) { edited.triggers = {DailyTrigger{9, 6}}; }, false},
        {[](Rule& edited) { edited.triggers.emplace_back(BelowLineTrigger{}); }, false},
        {[](Rule& edited) { edited.pauseWhileRunning.clear(); }, false},
    };
    for (const auto& [edit, keeps] : table) {
        Rule edited = rule;
        edit(edited);
        EXPECT_EQ(edited.approvalKey(roots, catalog) == key, keeps);
    }

    Preset revised = *catalog.preset("each-item");
    revised.semanticsRevision = 2;
    EXPECT_NE(rule.approvalKey({{"VOLUME", 43}}, catalog), key) << "another folder at the same path";
    EXPECT_NE(rule.approvalKey(roots, PresetCatalog()), key) << "the preset is gone";
    EXPECT_NE(rule.approvalKey(roots, PresetCatalog({revised})), key);
    ApprovalKey legacy = key;
    const JSONValue inode(42);
    legacy.rootFileID = inode;
    EXPECT_NE(legacy, key) << "a key of an earlier version";
}

TEST(RuleBookTest, definesWhatATargetStandsFor) {
    EXPECT_EQ(definition(FolderTarget{"/a"}, catalog), "folder");
    EXPECT_EQ(definition(PresetTarget{"gone"}, catalog), "preset:gone;unknown");
    const auto scan = definition(ProjectScanTarget{{"/code"}, {ArtifactKind::pycache}, 30}, catalog);
    EXPECT_TRUE(scan.starts_with(R"(projectScan;depth 5;sources 16;{"pycache":"revision )")) << scan;
    EXPECT_TRUE(scan.contains("beside Python files; Python: anyOf(onlyFilesMatching:*.cpython-3*.pyc), files "))
        << scan;
}

TEST(RuleBookTest, keepsItsRulesInOrderAndEachIdOnce) {
    using Places = std::set<std::size_t>;
    for (const auto& [places, target, result] :
         {std::tuple(Places{0}, 4U, "bcda"), {{0, 2}, 4U, "bdac"}, {{1, 3}, 2U, "abdc"}, {{9}, 9U, "abcd"}}) {
        RuleBook book({named("a"), named("b"), named("c"), named("d")});
        book.move(places, target);
        EXPECT_EQ(order(book), result);
    }

    Rule rule = named("a");
    RuleBook book({named("b")});
    EXPECT_FALSE(book.update(rule, sampleNow) || book.remove(rule.id));
    EXPECT_TRUE(book.add(rule));
    rule.name = "c";
    EXPECT_FALSE(book.add(rule));
    EXPECT_TRUE(book.update(rule, sampleNow));
    EXPECT_EQ(order(book), "bc");
    EXPECT_TRUE(book.remove(rule.id));
    EXPECT_EQ(order(book), "b");
}

TEST(RuleBookTest, nothingOverdueStartsWhenARuleIsEnabledApprovedOrGivenOtherTriggers) {
    const Date longAgo = sampleNow - 1000h;
    Rule rule = sampleRule();
    const std::string id = rule.id.text();
    rule.triggers = {DailyTrigger{9, 5}, WeeklyTrigger{2, 9, 5}, EndOfDayTrigger{}, BelowLineTrigger{}};
    RuleBook book({rule});
    book.schedule.setLastRun(longAgo, rule.id);

    const std::map<std::string, Date> onlyItsRun{{id, longAgo}};
    const auto countedFrom = [&](Date date) {
        return std::map<std::string, Date>{{id, longAgo},
                                           {id + "/daily:09:05", date},
                                           {id + "/endOfDay", date},
                                           {id + "/weekly:2:09:05", date},
                                           {id + "/weekly:3:09:05", date}};
    };
    const auto afterUpdate = [&](Duration later) {
        EXPECT_TRUE(book.update(rule, sampleNow + later));
        return book.schedule.lastRun;
    };
    rule.name = "Renamed";
    EXPECT_EQ(afterUpdate(0h), onlyItsRun) << "another name changes no time";
    rule.triggers = {EndOfDayTrigger{}, ManualTrigger{}, WeeklyTrigger{2, 9, 5}, DailyTrigger{9, 5}};
    EXPECT_EQ(afterUpdate(0h), onlyItsRun) << "nor does another order, or one without a time";
    rule.triggers.emplace_back(WeeklyTrigger{3, 9, 5});
    EXPECT_EQ(afterUpdate(0h), countedFrom(sampleNow));
    EXPECT_EQ(book.schedule.countsFrom(rule.id, EndOfDayTrigger{}), sampleNow);
    EXPECT_EQ(book.schedule.lastRunOf(rule.id), longAgo);
    rule.enabled = false;
    EXPECT_EQ(afterUpdate(1h), countedFrom(sampleNow));
    rule.enabled = true;
    EXPECT_EQ(afterUpdate(2h), countedFrom(sampleNow + 2h));
    ASSERT_TRUE(book.approvePreview(rule, samplePlan(rule), catalog, sampleNow + 5min));
    EXPECT_EQ(book.schedule.lastRun, countedFrom(sampleNow + 5min));
    EXPECT_TRUE(book.remove(rule.id));
    EXPECT_TRUE(book.schedule.lastRun.empty());
}

}  // namespace
}  // namespace vostrel
