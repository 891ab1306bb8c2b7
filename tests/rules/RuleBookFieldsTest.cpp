#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SampleRules.h"
#include "rules/RuleBookFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using Members = std::map<std::string, std::string>;

/// `sampleRule()` as it is stored, with some of its members replaced, added or (by an empty text) left out.
std::string ruleText(const Members& changes = {}) {
    Members members{
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
    for (const auto& [key, text] : changes)
        members[key] = text;
    std::vector<std::string> texts;
    for (const auto& [key, text] : members) {
        if (!text.empty()) texts.push_back(fmt::format("\"{}\":{}", key, text));
    }
    return fmt::format("{{{}}}", fmt::join(texts, ","));
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
    struct Row {
        const char* key;
        const char* text;
        const char* reason;
    };
    const Row table[] = {
        {"filter", R"({"minAgeDays":-1})", "The age must be 0 days or more."},
        {"filter", R"({"minSizeBytes":-1})", "The size must be 0 bytes or more."},
        {"filter", R"({"includeGlobs":["", " \n"]})", "includeGlobs has only blank patterns."},
        {"filter", R"({"pinnedFiles":[]})", "pinnedFiles is empty."},
        {"filter", R"({"pinnedFiles":[{"name":"a/b","volumeUUID":"V","inode":1}]})",
         "A pinned file's name is one component, in NFC."},
        {"filter", R"({"pinnedFiles":[{"name":"..","volumeUUID":"V","inode":1}]})",
         "A pinned file's name is one component, in NFC."},
        {"filter", R"({"pinnedFiles":[{"name":"e\u0301","volumeUUID":"V","inode":1}]})",
         "A pinned file's name is one component, in NFC."},
        {"filter", R"({"pinnedFiles":[{"name":"a","volumeUUID":"V","inode":1}]})",
         "A rule for chosen files cleans only those files, directly inside its folder."},
        {"filter",
         R"({"scope":"topLevelFiles","includeGlobs":["a"],"pinnedFiles":[{"name":"a","volumeUUID":"V","inode":1}]})",
         "A rule for chosen files cannot also have name patterns."},
        {"filter",
         R"({"scope":"topLevelFiles","pinnedFiles":[{"name":"a","volumeUUID":"V","inode":1},)"
         R"({"name":"a","volumeUUID":"V","inode":2}]})",
         "A rule for chosen files names each file once."},
        {"filter", R"({"scope":"topLevelFiles"})", "A rule for chosen files needs the files it was made for."},
        {"pauseWhileRunning", R"(["a","b "])", "The app to pause for \"b \" has spaces or line breaks around it."},
        // Words that this version does not know.
        {"action", R"("shred")", nullptr},
        {"filter", R"({"scope":"newest"})", nullptr},
        {"filter", R"({"ageBasis":"created"})", nullptr},
        {"target", R"({"type":"volume","path":"/"})", nullptr},
        {"target", R"({"type":"projectScan","roots":[],"kinds":["dist","bazel"],"untouchedDays":1})", nullptr},
        // Keys that it does not know: each might be a limit.
        {"onlyIfIdle", "true", nullptr},
        {"type", R"("rule")", nullptr},
        {"filter", R"({"minAgeDays":30,"maxSizeBytes":5})", nullptr},
        {"target", R"({"type":"folder","path":"/a","depth":1})", nullptr},
        // Members that are missing or something else.
        {"createdAt", "", nullptr},
        {"createdAt", R"("yesterday")", "Not an ISO 8601 date: yesterday"},
        {"id", "", nullptr},
        {"enabled", "1", nullptr},
        {"target", R"({"path":"/a"})", nullptr},
        {"target", R"({"type":"folder"})", nullptr},
        {"filter", "[]", nullptr},
        {"filter", R"({"minAgeDays":1.5})", nullptr},
        {"filter", R"({"minAgeDays":5,"minAgeDays":50})", nullptr},
    };
    for (const auto& [key, text, reason] : table) {
        const std::string rule = ruleText({{key, text}});
        const auto read = decoded<Rule>(rule);
        ASSERT_FALSE(read) << rule;
        if (reason) {
            EXPECT_EQ(read.error().description, reason);
        }

        const auto book = decoded<RuleBook>("{\"rules\":[" + rule + "],\"schedule\":{}}");
        ASSERT_TRUE(book) << rule;
        EXPECT_EQ(book->unreadableRules, std::vector{*JSONCoding::decoder().decode(rule)});
    }
}

TEST(RuleBookFieldsTest, readsLenientlyWhatCannotWidenARule) {
    struct Row {
        const char* key;
        const char* text;
        void (*edit)(Rule&);
    };
    const auto withoutTriggers = [](Rule& rule) { rule.triggers.clear(); };
    const auto unchanged = [](Rule&) {};
    const Row table[] = {
        {"filter", "", [](Rule& rule) { rule.filter = {}; }},
        {"filter", R"({"includeGlobs":["*.log"," "],"excludeGlobs":[""]})",
         [](Rule& rule) { rule.filter = {}, rule.filter.includeGlobs = {"*.log"}; }},
        {"filter", R"({"minAgeDays":3e1,"minSizeBytes":null})", unchanged},
        {"pauseWhileRunning", "", [](Rule& rule) { rule.pauseWhileRunning.clear(); }},
        {"triggers", "", withoutTriggers},
        {"triggers", R"("daily")", withoutTriggers},
        {"triggers", R"([{"type":"endOfDay"},{"type":"hourly"}])", withoutTriggers},
        {"triggers", R"([{"type":"daily","hour":9,"minute":5,"until":"2026"}])", withoutTriggers},
        {"triggers", R"([{"type":"endOfDay","until":"2026"}])", withoutTriggers},
        {"triggers", R"([{"type":"daily","hour":99,"minute":-5}])",
         [](Rule& rule) { rule.triggers = {DailyTrigger{99, -5}}; }},
        {"approval", "null", unchanged},
        {"approval", R"("yes")", unchanged},
        {"approval", R"({"target":{"type":"folder","path":"/a"}})", unchanged},
    };
    for (const auto& [key, text, edit] : table) {
        Rule expected = sampleRule();
        edit(expected);
        EXPECT_EQ(decoded<Rule>(ruleText({{key, text}})), expected) << key << " " << text;
    }
}

TEST(RuleBookFieldsTest, anApprovalIsReadWhollyOrNotAtAll) {
    Rule approved = sampleRule();
    approved.approval = approved.approvalKey({{"VOLUME", 42}}, PresetCatalog());
    const std::string key = encoded(*approved.approval);
    EXPECT_EQ(decoded<Rule>(ruleText({{"approval", key}})), approved);
    EXPECT_EQ(decoded<Rule>(ruleText({{"approval", "{\"until\":1," + key.substr(1)}})), sampleRule());

    const std::string legacy =
        R"({"action":"trash","filter":{"minAgeDays":30},"pauseWhileRunning":["org.example.Editor"],)"
        R"("rootFileID":18446744073709551615,"target":{"type":"folder","path":"/home/ada/Cache"},)"
        R"("unattendedTriggers":[{"type":"daily","hour":9,"minute":5}]})";
    const auto kept = decoded<Rule>(ruleText({{"approval", legacy}}));
    ASSERT_TRUE(kept && kept->approval) << "a key of an earlier version";
    EXPECT_NE(kept->approval, approved.approval);
    EXPECT_EQ(decoded<Rule>(encoded(*kept)), *kept);
    EXPECT_THAT(encoded(*kept), testing::HasSubstr(R"("rootFileID":18446744073709551615)"));
    EXPECT_THAT(encoded(*kept->approval),
                testing::Not(testing::AnyOf(testing::HasSubstr("roots"), testing::HasSubstr("definition"))))
        << "an earlier version reads it again";
}

TEST(RuleBookFieldsTest, writesUnreadableRulesBackAfterTheOthers) {
    const std::string bad = ruleText({{"filter", R"({"minAgeDays":-1,"note":1e400})"}});
    const std::string other = ruleText({{"id", R"("99999999-2222-4333-8444-555555555555")"}});
    const auto book = decoded<RuleBook>("{\"rules\":[" + ruleText() + "," + bad + ",7," + other + "],\"schedule\":{}}");
    ASSERT_TRUE(book);
    EXPECT_EQ(book->rules.size(), 2);
    EXPECT_EQ(book->unreadableCount(), 2);

    const std::string written = encoded(*book);
    EXPECT_EQ(decoded<RuleBook>(written), *book);
    const auto value = *JSONCoding::decoder().decode(written);
    const auto& rules = *value.as<JSONObject>()->find("rules")->as<JSONArray>();
    ASSERT_EQ(rules.size(), 4);
    EXPECT_EQ(rules[2], *JSONCoding::decoder().decode(bad));
    EXPECT_EQ(rules[3], JSONValue(7));
}

TEST(RuleBookFieldsTest, keepsASecondRuleOfTheSameIdAsUnreadable) {
    const std::string twin = ruleText({{"name", R"("Twin")"}});
    const auto book = decoded<RuleBook>("{\"rules\":[" + ruleText() + "," + twin + "]}");
    ASSERT_TRUE(book);
    EXPECT_THAT(book->rules, testing::ElementsAre(sampleRule()));
    EXPECT_EQ(book->unreadableRules, std::vector{*JSONCoding::decoder().decode(twin)});
}

TEST(RuleBookFieldsTest, readsTheScheduleEntryByEntryAndKeepsWhatItDoesNotKnow) {
    const auto book = decoded<RuleBook>(
        R"({"format":2,"rules":[],"schedule":{"lastRun":{"A":"2025-10-09T08:53:20Z","B":"never","C":5},)"
        R"("lastThresholdSession":"2025-10-09T08:53:20.5Z","thresholdLatchedAt":"soon"}})");
    ASSERT_TRUE(book);
    EXPECT_EQ(book->schedule.lastRun, (std::map<std::string, Date>{{"A", sampleNow}}));
    EXPECT_EQ(book->schedule.lastThresholdSession, sampleNow + std::chrono::milliseconds(500));
    EXPECT_EQ(book->schedule.thresholdLatchedAt, std::nullopt);
    EXPECT_EQ(encoded(*book), R"({"format":2,"rules":[],"schedule":{"lastRun":{"A":"2025-10-09T08:53:20.000Z"},)"
                              R"("lastThresholdSession":"2025-10-09T08:53:20.500Z"}})");
    EXPECT_EQ(decoded<RuleBook>(R"({"rules":[],"schedule":[]})"), RuleBook());
}

TEST(RuleBookFieldsTest, refusesWhatIsNoBook) {
    for (const char* text : {"", "[]", "{}", R"({"schedule":{}})", R"({"rules":{}})", R"({"rules":null})",
                             R"({"rules":[],"rules":[]})", R"({"rules":[)"}) {
        EXPECT_FALSE(decoded<RuleBook>(text)) << text;
    }
}

}  // namespace
}  // namespace vostrel
