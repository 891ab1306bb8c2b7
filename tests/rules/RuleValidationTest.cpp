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

const std::string noName = "Give the rule a name.";
const std::string noFolder = "Choose a folder.";
const std::string twice = "A code folder is listed twice.";
const std::string noKinds = "Choose at least one kind of folder to remove.";
const std::string untouchedDays = "Untouched days must be between 1 and 3650.";
const std::string noFullPath = "Choose each code folder by its full path.";
const std::string negativeAge = "The age must be 0 days or more.";
const std::string noTime = "A run time is not a time of day.";
const std::string noWeekday = "A weekly run has a day that does not exist.";
const std::string noApp = "A run when an app quits needs the app's bundle id.";
const std::string blankPause = "An app to pause for is blank.";
const std::string unstorable = "This rule could not be saved in a form Vostrel can read back.";
const std::string noFilters =
    "A project scan picks projects by how long they have been untouched, so it has no age, size or name filters.";

std::string spacesAround(const std::string& entry) {
    return "The app to pause for \"" + entry + "\" has spaces or line breaks around it.";
}

class RuleValidationTest : public testing::Test {
protected:
    /// A sound rule, what is done to it, and the sentences that this is answered with, in their order.
    using Row = std::tuple<Rule, std::function<void(Rule&)>, Sentences>;
    void check(const std::vector<Row>& table) const {
        for (const auto& [rule, edit, expected] : table) {
            Rule edited = rule;
            edit(edited);
            EXPECT_EQ(problems(edited), expected) << testing::PrintToString(expected);
        }
    }
    [[nodiscard]] Sentences problems(const Rule& rule, const FixedDefaults& defaults = FixedDefaults({})) const {
        const TargetResolver resolver(disk.path(), defaults, guards, {::getuid(), disk / "temporary"});
        return rule.validationProblems(guards, resolver, sampleCatalog());
    }
    [[nodiscard]] Sentences refusal(const char* path) const {
        return {guards.refusalForRoot(disk / path).value_or("")};
    }
    [[nodiscard]] Rule scanOf(std::vector<std::filesystem::path> roots) const {
        Rule made = plain;
        made.target = ProjectScanTarget{std::move(roots), {ArtifactKind::nodeModules}, 30};
        made.filter = {};
        return made;
    }

    TemporaryFolder disk;
    PathGuards guards{disk.path()};
    const Rule plain = sampleRule(disk / "Cache");
    const Rule scan = scanOf({disk / "code"});
};

void asItIs(Rule&) {}

ProjectScanTarget& target(Rule& scan) {
    return std::get<ProjectScanTarget>(scan.target);
}

void choose(Rule& rule, std::vector<PinnedFile> files) {
    rule.filter = {};
    rule.filter.scope = RuleScope::topLevelFiles;
    rule.filter.pinnedFiles = std::move(files);
}

const PinnedFile fileA{"a", "VOLUME", 1};

TEST_F(RuleValidationTest, checksTargets) {
    const auto linked = disk.makeLink("way", disk.makeFolder("elsewhere")) / "in";
    check({
        {plain, [&](Rule& r) { r.target = FolderTarget{linked}; }, {}},
        {plain, [&](Rule& r) { r.target = FolderTarget{disk / "a\xFF"}; }, {}},
        {plain, [](Rule& r) { r.name = " \n\u3000\u00A0"; }, {noName}},
        {plain, [](Rule& r) { r.name = "a\xFF"; }, {unstorable}},
        {plain, [](Rule& r) { r.target = FolderTarget{}; }, {noFolder}},
        {plain, [&](Rule& r) { r.target = FolderTarget{disk / "Documents"}; }, refusal("Documents")},
        {plain, [&](Rule& r) { r.target = FolderTarget{disk / "Documents/Scans"}; }, {}},  // named by the rule itself
        {scanOf({disk / "code", disk / "work/"}), [](Rule& r) { target(r).untouchedDays = 3650; }, {}},
        {scanOf({disk / "code", disk / ".ssh"}), asItIs, refusal(".ssh")},
        {scanOf({disk / "code", disk / "CODE/"}), asItIs, {twice}},
        {scanOf({}), asItIs, {"Choose at least one code folder."}},
        {scan, [](Rule& r) { r.filter.minSizeBytes = 1; }, {noFilters}},
        {scan, [](Rule& r) { target(r).untouchedDays = 0; }, {untouchedDays}},
        {scan, [](Rule& r) { target(r).untouchedDays = 3651; }, {untouchedDays}},
        {scanOf({disk / "Library/Developer"}),
         asItIs,
         {"Vostrel does not look for projects inside ~/Library, where apps keep their own files."}},
    });
}

TEST_F(RuleValidationTest, checksFiltersTriggersAndPauses) {
    check({
        {plain,
         [](Rule& r) { r.filter.minAgeDays = 0, r.triggers = {WeeklyTrigger{7, 23, 59}, WeeklyTrigger{1, 0, 0}}; },
         {}},
        {plain, [](Rule& r) { r.filter.minSizeBytes = -1; }, {"The size must be 0 bytes or more.", unstorable}},
        {plain, [](Rule& r) { r.filter.excludeGlobs = {""}; }, {"A pattern cannot be empty.", unstorable}},
        {plain,
         [](Rule& r) { r.filter.includeGlobs = {"a/b", "[a", "[b", " c"}, r.filter.excludeGlobs = {"/"}; },
         {"Name patterns match file names only, so they cannot contain \"/\": a/b, /",
          R"(A "[" in the pattern has no matching "]".)", "A pattern cannot start or end with a space."}},
        {plain, [](Rule& r) { r.triggers = {DailyTrigger{24, 0}}; }, {noTime}},
        {plain, [](Rule& r) { r.triggers = {WeeklyTrigger{0, 0, 0}}; }, {noWeekday}},
        {plain, [](Rule& r) { choose(r, {fileA, {"b", "VOLUME", 1}}); }, {}},
        {plain, [](Rule& r) { choose(r, {{"a/b", "VOLUME", 1}}); }, {unstorable}},
        {plain,
         [](Rule& r) { choose(r, {fileA, fileA}), r.filter.scope = {}, r.filter.excludeGlobs = {"b"}; },
         {"A rule for chosen files cleans only those files, directly inside its folder.",
          "A rule for chosen files cannot also have name patterns.", "A rule for chosen files names each file once.",
          unstorable}},
        {plain,
         [](Rule& r) { choose(r, {}); },
         {"A rule for chosen files needs the files it was made for.", unstorable}},
    });
}

TEST_F(RuleValidationTest, takesASettingForAFaultOnlyWhereTheGuardsRefuseIt) {
    Rule rule = plain;
    rule.target = PresetTarget{"derived-data"};
    for (const auto& [folder, expected] :
         {std::pair((disk / "Documents/Build").native(), refusal("Documents/Build")), {"Build", {}}})
        EXPECT_EQ(problems(rule, FixedDefaults({{"com.apple.dt.Xcode IDECustomDerivedDataLocation", folder}})),
                  expected);
}

TEST_F(RuleValidationTest, reportsEveryProblemInOneOrderAndEachOnce) {
    Rule edited = scanOf({"code", "code"});
    edited.name = "";
    edited.filter.minAgeDays = -1;
    edited.triggers = {WeeklyTrigger{9, 99, 99}, WhenAppQuitsTrigger{}};
    edited.pauseWhileRunning = {" "};
    target(edited).kinds.clear();
    EXPECT_EQ(problems(edited), (Sentences{noName, noFilters, twice, noKinds, noFullPath, negativeAge, noTime,
                                           noWeekday, noApp, spacesAround(" "), blankPause, unstorable}));
}

}  // namespace
}  // namespace vostrel
