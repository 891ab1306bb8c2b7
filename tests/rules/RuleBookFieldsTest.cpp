#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SampleRules.h"
#include "rules/RuleBookFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// `sampleRule()` as it is stored, one of its members replaced, added or (by an empty text) left out.
std::string ruleText(const std::string& changed = "action", const std::string& to = R"("trash")") {
    std::map<std::string, std::string> members{
        {"id", R"("11111111-2222-4333-8444-555555555555")"},
        {"name", R"("Old cache")"},
        {"enabled", "true"},
        {"target", R"({"type":"folder","path":"/home/ada/Cache"})"},
        {"filter", R"({"minAgeDays":30})"},
        {"action", R"("trash")"},
        {"triggers", R"([{"type":"daily","hour":9,"minute":5}])"},
        {"pauseWhileRunning", R"(["org.example.Editor"])"},
        {"createdAt", R"("2025-10-09T08:53:20.000Z")"},
    };
    members[changed] = to;
    std::vector<std::string> texts;
    for (const auto& [key, text] : members) {
        if (!text.empty()) texts.push_back(fmt::format("\"{}\":{}", key, text));
    }
    return fmt::format("{{{}}}", fmt::join(texts, ","));
}

JSONValue value(const std::string& text) {
    return JSONCoding::decoder().decode(text).value();
}

template <class Value>
Decoded<Value> decoded(const std::string& text) {
    return JSONCoding::decoder().decode<Value>(text);
}

template <class Value>
std::string encoded(const Value& value) {
    return JSONCoding::encoder(JSONLayout::compact).encode(value).value();
}

TEST(RuleBookFieldsTest, readsWhatItWrites) {
    EXPECT_EQ(decoded<Rule>(ruleText()), sampleRule());

    Rule rule = sampleRule();
    rule.target = ProjectScanTarget{{"/a", "/b\xFF"}, {ArtifactKind::pods, ArtifactKind::xcodeDerivedData}, 30};
    rule.filter = {7, AgeBasis::lastOpened, 1'000, {"*.log"}, {"a"}, RuleScope::allFiles, {}};
    rule.action = CleanupAction::deletePermanently;
    rule.triggers = {WeeklyTrigger{8, 24, 60}, WhenAppQuitsTrigger{"org.example.Editor"}, EndOfDayTrigger{},
                     BelowLineTrigger{}, ManualTrigger{}};
    rule.approval = rule.approvalKey({{"VOLUME", UINT64_MAX}}, PresetCatalog());
    EXPECT_EQ(decoded<Rule>(encoded(rule)), rule);

    rule.filter = {};
    rule.filter.scope = RuleScope::topLevelFiles;
    rule.filter.pinnedFiles = {{"caf\u00E9", "VOLUME", 7}};
    EXPECT_EQ(decoded<Rule>(encoded(rule)), rule);
}

TEST(RuleBookFieldsTest, aRuleThatCannotBeReadWhollyIsUnreadable) {
    const std::tuple<const char*, const char*, const char*> table[] = {
        // Limits that say nothing, or not surely what was meant.
        {"filter", R"({"includeGlobs":["", " \n"]})", "filter: includeGlobs has only blank patterns."},
        {"filter", R"({"pinnedFiles":[]})", "filter.pinnedFiles: pinnedFiles is empty."},
        {"filter", R"({"pinnedFiles":[{"name":"e\u0301","volumeUUID":"V","inode":1}]})",
         "filter.pinnedFiles[0]: A pinned file's name is one component, in NFC."},
        {"filter", R"({"minAgeDays":1.5})", "filter.minAgeDays: 1.5 is not a whole number that fits here."},
        {"filter", R"({"minAgeDays":5,"minAgeDays":50})", R"(filter: The key "minAgeDays" is there twice.)"},
        // Words that this version does not know.
        {"filter", R"({"scope":"newest"})", R"(filter.scope: "newest" is not a known word here.)"},
        {"target", R"({"type":"projectScan","roots":[],"kinds":["dist","bazel"],"untouchedDays":1})",
         R"(target.kinds[1]: "bazel" is not a known word here.)"},
        // Keys that it does not know: each might be a limit.
        {"onlyIfIdle", "true", R"(The key "onlyIfIdle" is not known here.)"},
        {"filter", R"({"maxSizeBytes":5})", R"(filter: The key "maxSizeBytes" is not known here.)"},
        // Members that are missing or something else.
        {"createdAt", "", R"(The key "createdAt" is missing.)"},
        {"createdAt", R"("yesterday")", "createdAt: Not an ISO 8601 date: yesterday"},
    };
    for (const auto& [key, text, why] : table) {
        const std::string rule = ruleText(key, text);
        const auto read = decoded<Rule>(rule);
        EXPECT_EQ(read ? "" : read.error().text(), why);
        EXPECT_THAT(decoded<RuleBook>("{\"rules\":[" + rule + "]}")->unreadableRules, ElementsAre(value(rule)));
    }
}

TEST(RuleBookFieldsTest, readsLenientlyWhatCannotWidenARule) {
    const auto withoutTriggers = [](Rule& rule) { rule.triggers.clear(); };
    const auto unchanged = [](Rule&) {};
    const std::tuple<const char*, const char*, void (*)(Rule&)> table[] = {
        {"filter", "", [](Rule& rule) { rule.filter = {}; }},
        {"filter", R"({"includeGlobs":["*.log"," "],"excludeGlobs":[""]})",
         [](Rule& rule) { rule.filter = {}, rule.filter.includeGlobs = {"*.log"}; }},
        {"filter", R"({"minAgeDays":3e1,"minSizeBytes":null})", unchanged},
        {"triggers", R"([{"type":"endOfDay"},{"type":"hourly"}])", withoutTriggers},
        {"triggers", R"([{"type":"endOfDay","until":"2026"}])", withoutTriggers},
        {"triggers", R"([{"type":"daily","hour":99,"minute":-5}])",
         [](Rule& rule) { rule.triggers = {DailyTrigger{99, -5}}; }},
        {"approval", R"({"target":{"type":"folder","path":"/a"}})", unchanged},
    };
    for (const auto& [key, text, edit] : table) {
        Rule expected = sampleRule();
        edit(expected);
        EXPECT_EQ(decoded<Rule>(ruleText(key, text)), expected) << key << " " << text;
    }
}

TEST(RuleBookFieldsTest, anApprovalIsReadWhollyOrNotAtAll) {
    Rule approved = sampleRule();
    approved.approval = approved.approvalKey({{"VOLUME", 42}}, PresetCatalog());
    const std::string key = encoded(*approved.approval);
    EXPECT_EQ(decoded<Rule>(ruleText("approval", key)), approved);
    EXPECT_EQ(decoded<Rule>(ruleText("approval", "{\"until\":1," + key.substr(1))), sampleRule());

    const std::string legacy =
        R"({"action":"trash","filter":{"minAgeDays":30},"pauseWhileRunning":["org.example.Editor"],)"
        R"("rootFileID":18446744073709551615,"target":{"type":"folder","path":"/home/ada/Cache"},)"
        R"("unattendedTriggers":[{"type":"daily","hour":9,"minute":5}]})";
    const auto kept = decoded<Rule>(ruleText("approval", legacy));
    ASSERT_TRUE(kept && kept->approval) << "a key of an earlier version";
    EXPECT_NE(kept->approval, approved.approval);
    EXPECT_EQ(decoded<Rule>(encoded(*kept)), *kept);
    EXPECT_THAT(encoded(*kept->approval), AllOf(HasSubstr(R"("rootFileID":18446744073709551615)"),
                                                Not(HasSubstr("roots")), Not(HasSubstr("definition"))))
        << "an earlier version reads it again";
}

TEST(RuleBookFieldsTest, writesUnreadableRulesBackAfterTheOthers) {
    const std::string bad = ruleText("filter", R"({"minAgeDays":-1,"note":1e400})");
    const std::string twin = ruleText("name", R"("Twin")");  // of the first one's id
    const std::string other = ruleText("id", R"("99999999-2222-4333-8444-555555555555")");
    const auto book =
        decoded<RuleBook>(fmt::format(R"({{"rules":[{},{},7,{},{}],"schedule":{{}}}})", ruleText(), bad, twin, other));
    ASSERT_TRUE(book);
    EXPECT_THAT(book->unreadableRules, ElementsAre(value(bad), value("7"), value(twin)));

    const std::string written = encoded(*book);
    EXPECT_EQ(decoded<RuleBook>(written), *book);
    EXPECT_THAT(*value(written).as<JSONObject>()->find("rules")->as<JSONArray>(),
                ElementsAre(testing::_, testing::_, value(bad), value("7"), value(twin)));
}

TEST(RuleBookFieldsTest, readsTheScheduleEntryByEntryAndKeepsWhatItDoesNotKnow) {
    const auto book = decoded<RuleBook>(
        R"({"format":2,"rules":[],"schedule":{"lastRun":{"A":"2025-10-09T08:53:20Z","B":"never","C":5},)"
        R"("lastThresholdSession":"2025-10-09T08:53:20.5Z","thresholdLatchedAt":"soon"}})");
    ASSERT_TRUE(book);
    EXPECT_EQ(encoded(*book), R"({"format":2,"rules":[],"schedule":{"lastRun":{"A":"2025-10-09T08:53:20.000Z"},)"
                              R"("lastThresholdSession":"2025-10-09T08:53:20.500Z"}})");
    EXPECT_EQ(decoded<RuleBook>(R"({"rules":[],"schedule":[]})"), RuleBook());
}

TEST(RuleBookFieldsTest, refusesWhatIsNoBook) {
    for (const char* text : {"", "[]", R"({"schedule":{}})", R"({"rules":{}})", R"({"rules":[],"rules":[]})"})
        EXPECT_FALSE(decoded<RuleBook>(text)) << text;
}

}  // namespace
}  // namespace vostrel
