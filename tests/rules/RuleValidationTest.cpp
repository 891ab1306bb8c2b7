#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>

#include "SampleRules.h"
#include "filesystem/PathGuards.h"
#include "rules/TargetResolver.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using Sentences = std::vector<std::string>;

constexpr const char* unstorable = "This rule could not be saved in a form Vostrel can read back.";
constexpr const char* noTimeOfDay = "A run time is not a time of day.";
constexpr const char* noWeekday = "A weekly run has a day that does not exist.";
constexpr const char* noFilters =
    "A project scan picks projects by how long they have been untouched, so it has no age, size or name filters.";
constexpr const char* onlyChosenFiles = "A rule for chosen files cleans only those files, directly inside its folder.";
constexpr const char* eachItem = "This preset cleans each item in its folders, and its rules must too.";

class RuleValidationTest : public testing::Test {
protected:
    [[nodiscard]] Sentences problems(const Rule& rule, const FixedDefaults& defaults = FixedDefaults({})) const {
        const TargetResolver resolver(disk.path(), defaults, guards, {::getuid(), disk / "temporary"});
        return rule.validationProblems(guards, resolver, catalog);
    }
    [[nodiscard]] Rule rule() const { return sampleRule(disk / "Cache"); }
    [[nodiscard]] Rule presetRule(const char* id) const {
        Rule made = rule();
        made.target = PresetTarget{id};
        return made;
    }
    [[nodiscard]] Rule scanRule(std::vector<std::filesystem::path> roots) const {
        Rule made = rule();
        made.target = ProjectScanTarget{std::move(roots), {ArtifactKind::nodeModules}, 30};
        made.filter = {};
        return made;
    }
    /// Whether those are all the problems of each rule, in that order.
    struct Row {
        Rule rule;
        std::function<void(Rule&)> edit;
        Sentences problems;
    };
    void check(const std::vector<Row>& table) const {
        for (const Row& row : table) {
            Rule edited = row.rule;
            row.edit(edited);
            EXPECT_EQ(problems(edited), row.problems) << testing::PrintToString(row.problems);
        }
    }

    TemporaryFolder disk;
    PathGuards guards{disk.path()};
    PresetCatalog catalog = sampleCatalog();
};

ProjectScanTarget& scanOf(Rule& rule) {
    return std::get<ProjectScanTarget>(rule.target);
}

PinnedFile pin(const char* name, std::uint64_t inode) {
    return {name, "VOLUME", inode};
}

void choose(Rule& rule, std::vector<PinnedFile> files) {
    rule.filter = {};
    rule.filter.scope = RuleScope::topLevelFiles;
    rule.filter.pinnedFiles = std::move(files);
}

TEST_F(RuleValidationTest, findsNothingWrongWithWhatCanRun) {
    const auto nothing = [](Rule&) {};
    check({
        {rule(), nothing, {}},
        {presetRule("each-item"), nothing, {}},
        {presetRule("own-names"), [](Rule& edited) { edited.filter.excludeGlobs = {"*.keep"}; }, {}},
        {presetRule("any-depth"), [](Rule& edited) { edited.filter.scope = RuleScope::allFiles; }, {}},
        {presetRule("screenshots"), nothing, {}},
        {scanRule({disk / "code", disk / "work/"}), nothing, {}},
        {rule(), [](Rule& edited) { choose(edited, {pin("a", 1), pin("b", 1)}); }, {}},
        {rule(), [](Rule& edited) { edited.triggers = {WeeklyTrigger{7, 23, 59}, WeeklyTrigger{1, 0, 0}}; }, {}},
        {rule(), [](Rule& edited) { edited.filter.minAgeDays = 0; }, {}},
        {scanRule({disk / "code"}), [](Rule& edited) { scanOf(edited).untouchedDays = 3650; }, {}},
        {rule(), [&](Rule& edited) { edited.target = FolderTarget{disk / "a\xFF"}; }, {}},
    });
}

TEST_F(RuleValidationTest, saysWhatIsWrongWithATarget) {
    const std::filesystem::path code = disk / "code";
    check({
        {rule(), [](Rule& edited) { edited.name = " \n\u3000\u00A0"; }, {"Give the rule a name."}},
        {rule(), [](Rule& edited) { edited.target = FolderTarget{}; }, {"Choose a folder."}},
        {rule(), [](Rule& edited) { edited.target = FolderTarget{"Cache"}; }, {"Choose a folder."}},
        {rule(), [](Rule& edited) { edited.target = FolderTarget{"/home/.."}; }, {"Choose a folder."}},
        {scanRule({code}), [](Rule& edited) { edited.filter.minAgeDays = 1; }, {noFilters}},
        {scanRule({code}), [](Rule& edited) { edited.filter.minSizeBytes = 1; }, {noFilters}},
        {scanRule({code}), [](Rule& edited) { edited.filter.excludeGlobs = {"a"}; }, {noFilters}},
        {scanRule({}), [](Rule&) {}, {"Choose at least one code folder."}},
        {scanRule({code, disk / "CODE/"}), [](Rule&) {}, {"A code folder is listed twice."}},
        {scanRule({code}),
         [](Rule& edited) { scanOf(edited).kinds.clear(); },
         {"Choose at least one kind of folder to remove."}},
        {scanRule({code}),
         [](Rule& edited) { scanOf(edited).untouchedDays = 0; },
         {"Untouched days must be between 1 and 3650."}},
        {scanRule({code}),
         [](Rule& edited) { scanOf(edited).untouchedDays = 3651; },
         {"Untouched days must be between 1 and 3650."}},
        {scanRule({code, "~/work"}), [](Rule&) {}, {"Choose each code folder by its full path."}},
        {scanRule({disk / "Library/Developer"}),
         [](Rule&) {},
         {"Vostrel does not look for projects inside ~/Library, where apps keep their own files."}},
    });
}

TEST_F(RuleValidationTest, saysWhatIsWrongWithTheRestOfARule) {
    check({
        {rule(), [](Rule& edited) { edited.filter.minAgeDays = -1; }, {"The age must be 0 days or more.", unstorable}},
        {rule(),
         [](Rule& edited) { edited.filter.minSizeBytes = -1; },
         {"The size must be 0 bytes or more.", unstorable}},
        {rule(),
         [](Rule& edited) { edited.filter.includeGlobs = {"a/b", "*.log"}, edited.filter.excludeGlobs = {"/"}; },
         {"Name patterns match file names only, so they cannot contain \"/\": a/b, /"}},
        {rule(),
         [](Rule& edited) { edited.filter.includeGlobs = {"[a", "[b", " c"}; },
         {R"(A "[" in the pattern has no matching "]".)", "A pattern cannot start or end with a space."}},
        {rule(), [](Rule& edited) { edited.filter.excludeGlobs = {""}; }, {"A pattern cannot be empty.", unstorable}},
        {rule(), [](Rule& edited) { edited.triggers = {DailyTrigger{24, 0}}; }, {noTimeOfDay}},
        {rule(), [](Rule& edited) { edited.triggers = {DailyTrigger{0, 60}, DailyTrigger{-1, 0}}; }, {noTimeOfDay}},
        {rule(),
         [](Rule& edited) { edited.triggers = {WeeklyTrigger{8, 0, 0}, DailyTrigger{0, -1}}; },
         {noTimeOfDay, noWeekday}},
        {rule(), [](Rule& edited) { edited.triggers = {WeeklyTrigger{0, 0, 0}}; }, {noWeekday}},
        {rule(),
         [](Rule& edited) { edited.triggers = {WhenAppQuitsTrigger{" "}}; },
         {"A run when an app quits needs the app's bundle id."}},
        {rule(),
         [](Rule& edited) { edited.pauseWhileRunning = {"org.example.Editor\n"}; },
         {"The app to pause for \"org.example.Editor\n\" has spaces or line breaks around it.", unstorable}},
        {rule(), [](Rule& edited) { edited.pauseWhileRunning = {""}; }, {"An app to pause for is blank."}},
        {rule(),
         [](Rule& edited) { choose(edited, {pin("a", 1)}), edited.filter.scope = RuleScope::allFiles; },
         {onlyChosenFiles, unstorable}},
        {rule(),
         [](Rule& edited) { choose(edited, {pin("a", 1)}), edited.filter.excludeGlobs = {"b"}; },
         {"A rule for chosen files cannot also have name patterns.", unstorable}},
        {rule(),
         [](Rule& edited) { choose(edited, {pin("a", 1), pin("a", 2)}); },
         {"A rule for chosen files names each file once.", unstorable}},
        {rule(),
         [](Rule& edited) { choose(edited, {}); },
         {"A rule for chosen files needs the files it was made for.", unstorable}},
        {rule(), [](Rule& edited) { choose(edited, {pin("a/b", 1)}); }, {unstorable}},
        {rule(), [](Rule& edited) { edited.name = "a\xFF"; }, {unstorable}},
    });
}

TEST_F(RuleValidationTest, holdsARuleToItsPreset) {
    check({
        {presetRule("gone"), [](Rule&) {}, {"This preset is not available in this version of Vostrel."}},
        {presetRule("only-trash"),
         [](Rule& edited) { edited.action = CleanupAction::deletePermanently; },
         {"This preset only moves items to the Trash, so its rules cannot delete permanently."}},
        {presetRule("own-names"),
         [](Rule& edited) { edited.filter.includeGlobs = {"a"}; },
         {"This preset decides which names it cleans, so the rule cannot list names to clean. It can list names to "
          "keep."}},
        {presetRule("screenshots"),
         [](Rule& edited) { edited.filter.includeGlobs = {"a"}; },
         {"This preset decides which names it cleans, so the rule cannot list names to clean. It can list names to "
          "keep."}},
        {presetRule("each-item"), [](Rule& edited) { edited.filter.scope = RuleScope::allFiles; }, {eachItem}},
        {presetRule("each-item"), [](Rule& edited) { choose(edited, {pin("a", 1)}); }, {eachItem}},
        {presetRule("any-depth"), [](Rule&) {}, {"This preset cleans files at any depth, and its rules must too."}},
    });
}

TEST_F(RuleValidationTest, refusesProtectedRootsInTheGuardsWords) {
    const auto at = [&](const char* path) {
        return [folder = disk / path](Rule& edited) { edited.target = FolderTarget{folder}; };
    };
    const auto refusal = [&](const char* path) { return Sentences{guards.refusalForRoot(disk / path).value_or("")}; };
    check({
        {rule(), at("Library"), refusal("Library")},
        {rule(), at("Documents"), refusal("Documents")},
        {rule(), at("Library/Mail/V10"), refusal("Library/Mail/V10")},
        {rule(), at("Documents/Scans"), {}},  // named by the rule itself
        {scanRule({disk / "code", disk / ".ssh"}), [](Rule&) {}, refusal(".ssh")},
    });

    const auto withSetting = [](std::string folder) {
        return FixedDefaults({{"com.apple.dt.Xcode IDECustomDerivedDataLocation", std::move(folder)}});
    };
    const Rule derivedData = presetRule("derived-data");
    EXPECT_EQ(problems(derivedData, withSetting(disk / "Documents/Build")), refusal("Documents/Build"));
    EXPECT_EQ(problems(derivedData, withSetting("Build")), Sentences()) << "no fault of the rule";
}

TEST_F(RuleValidationTest, reportsEveryProblemInOneOrderAndEachOnce) {
    Rule edited = scanRule({"code", "code"});
    edited.name = "";
    edited.filter.minAgeDays = -1;
    edited.triggers = {WeeklyTrigger{9, 99, 99}, WhenAppQuitsTrigger{}};
    edited.pauseWhileRunning = {" "};
    scanOf(edited).kinds.clear();
    EXPECT_EQ(problems(edited),
              (Sentences{"Give the rule a name.", noFilters, "A code folder is listed twice.",
                         "Choose at least one kind of folder to remove.", "Choose each code folder by its full path.",
                         "The age must be 0 days or more.", noTimeOfDay, noWeekday,
                         "A run when an app quits needs the app's bundle id.",
                         "The app to pause for \" \" has spaces or line breaks around it.",
                         "An app to pause for is blank.", unstorable}));
}

}  // namespace
}  // namespace vostrel
