#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <regex>

#include "cleaning/PlannerHome.h"
#include "platform/UserAccount.h"

namespace vostrel {
namespace {

using std::chrono::days;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* planned = "planned";
constexpr const char* neverRemoved = "Vostrel never removes";
constexpr const char* notTheTools = "not recognized as a tool's folder";

Verdicts verdictsOf(const PlannerHome& home, const Rule& rule) {
    const auto plan = home.plan(rule);
    if (!plan) return {{"the plan", plan.error().sentence}};
    return home.verdicts(*plan);
}

/// Makes a file and dates it and each folder above it, below the home, that is as young as it was made.
void makeAged(const PlannerHome& home, const std::string& path, int age) {
    home.home.makeFile(path);
    for (std::filesystem::path part = path; !part.empty(); part = part.parent_path())
        home.setAge(part.native(), days(age));
}

/// A preset and its folder, the items there that it takes, those that it says are not the tool's, and those that it
/// passes over; each with its age in days, and after "//" a file inside it. USER is the user's number; "-Kate"
/// begins with the sign of the kelvin, which is a "k" when letters are folded.
constexpr std::string_view items = R"(
xcode-derived-data | Library/Developer/Xcode/DerivedData | 8 E-qqqqqqqqqqqqqqqqqqqqqqqqqqqq//info.plist | 99 E-qqqqqqqqqqqqqqqqqqqqqqqqqqqqq//a, 99 My notes//a | 99 note, 99 ModuleCache, 6 N-zzzzzzzzzzzzzzzzzzzzzzzzzzzz//a
xcode-device-support | Library/Developer/Xcode/iOS DeviceSupport | 91 iPhone14,5 17.2 (21C62)//Symbols/a, 91 17.0.1 (21A340) arm64e//a | 91 photos 2.0 (2024)//a | 89 16.4 (20E247)//a
xcode-device-support | Library/Developer/Xcode/watchOS DeviceSupport | 91 10.2 (21S364)//a
xcode-archives | Library/Developer/Xcode/Archives | 181 2024-01-31//a | 999 Releases//a, 999 2024-13-01//a | 179 2024-02-01//a, 999 2024-01-02
pip-cache | .cache/pip | 1 http-v2//a | 1 Wheels//a
uv-cache | .cache/uv | 1 wheels-v5//a | 1 thesis-v2//a
gradle-caches | .gradle/caches | 1 8.10.2//a, 1 9.0-rc-1//a | 1 3.5 photos//a, 1 modules-#//a
claude-updates | Library/Caches/com.anthropic.claudefordesktop.ShipIt | 1 update.aB3dE6g//a | 1 update.my notes//a | 1 update.private//a, 1 update.Private//a
go-build-cache | .cache/go-build | 1 0a//1-d |  | 99 fuzz//found/input, 99 README
playwright-browsers | .cache/ms-playwright | 1 chromium_headless_shell-1148//a, 1 webkit_mac12_arm64_special-2009//a | 1 chromium-1 my profile//Cookies
puppeteer-browsers | .cache/puppeteer | 1 chrome//linux-123.0.6312.58/a, 1 firefox//mac_arm-stable_128.0/a, 1 chromium//win64-1083080/a |  | 1 notes
agent-temp | temporary | 8 claude-USER/-home-ann-code//a | 99 claude-USER/mine//a | 6 claude-USER/-home-ann-new//a, 99 claude-USER/-my notes//a, 99 claude-USER/-Kate//a, 99 claude-USER/-notes, 99 claude-thesis/-old//a
logs | Library/Logs | 31 App/deep/a.log, 31 App/a.log.1 |  | 29 App/new.log, 99 App/1234567.log, 99 App/notes
old-downloads | Downloads | 1 film, 1 folder//.DS_Store |  | 1 .DS_Store
screenshots | Desktop | 31 Screenshot 2024-01-31 at 9.05.07.png |  | 29 Screenshot 2024-01-31 at 9.05.07 (2).mov, 99 letter.txt, 99 folder/Screenshot 2024-01-31 at 9.05.07.png
)";

TEST(PresetPlanTest, takesOnlyWhatThePresetIsAbout) {
    const auto table =
        std::regex_replace(std::string(items.substr(1)), std::regex("USER"), std::to_string(effectiveUserID()));
    for (const auto& line : split(table, "\n")) {
        SCOPED_TRACE(line);
        const PlannerHome home;
        const auto row = split(line, " | ");
        Verdicts expected;
        for (std::size_t column = 2; column < row.size(); ++column) {
            for (const std::string& item : split(row[column], ", ")) {
                const auto space = item.find(' ');
                const std::string path = row.at(1) + "/" + item.substr(space + 1);
                makeAged(home, path, std::stoi(item.substr(0, space)));
                if (column < 4) expected[path.substr(0, path.find("//"))] = column == 2 ? planned : notTheTools;
            }
        }
        EXPECT_EQ(verdictsOf(home, home.ruleOf(row.at(0))), expected);
    }
}

TEST(PresetPlanTest, leavesABrowserBesideWhichSomebodyKeepsMore) {
    const PlannerHome home;
    const std::string browsers = ".cache/puppeteer/";
    for (const char* inside : {"chrome/linux-123.0.1/a", "chrome/my-profile/Cookies", "firefox/linux-128.0 old/a",
                               "chromium/linux-1083080/a", "chromium/.metadata", "chromedriver/notes.txt"})
        makeAged(home, browsers + inside, 99);
    EXPECT_EQ(verdictsOf(home, home.ruleOf("puppeteer-browsers")),
              (Verdicts{{browsers + "chrome", neverRemoved},
                        {browsers + "firefox", neverRemoved},
                        {browsers + "chromium", planned},
                        {browsers + "chromedriver", neverRemoved}}));
}

TEST(PresetPlanTest, tellsWhenAnIDEWasOpenedByWhatItWrites) {
    const PlannerHome home;
    const std::string caches = ".cache/JetBrains/";
    for (const char* version : {"IdeaIC2022.2", "PyCharm2022.1", "GoLand2022.3", "CLion2022.1", "RubyMine2022.1",
                                "Rider2022.1", "WebStorm2022.1"})
        makeAged(home, caches + version + "/index", 91);
    for (const char* name : {"Toolbox/a", "Thesis2023.1/a", "PhpStorm2022.1/LocalHistory/changes", "DataGrip2022.1/a"})
        makeAged(home, caches + name, 999);
    const std::string options = "Library/Application Support/JetBrains/DataGrip2022.1/options/";
    makeAged(home, options + "editor.xml", 999);
    home.setAge(options + "editor.xml", days(3));
    makeAged(home, "Library/Logs/JetBrains/IdeaIC2022.2/idea.log", 91);
    makeAged(home, "Library/Logs/JetBrains/PyCharm2022.1/idea.log", 89);
    makeAged(home, ".config/JetBrains/CLion2022.1/port", 91);
    home.setAge(".config/JetBrains/CLion2022.1", days(3));
    // Links: to the settings of one, to a folder of another's, and to those of a third, on a disk that is away.
    makeAged(home, "elsewhere/options/editor.xml", 91);
    home.home.makeLink(".config/JetBrains/RubyMine2022.1", home / "elsewhere");
    home.home.makeLink(".config/JetBrains/Rider2022.1/options", home / "elsewhere/options");
    home.home.makeLink(".config/JetBrains/WebStorm2022.1", "/disk/that/is/away");
    for (const char* name : {"RubyMine2022.1", "Rider2022.1/options", "Rider2022.1", "WebStorm2022.1"})
        home.setAge(std::string(".config/JetBrains/") + name, days(91));
    EXPECT_EQ(verdictsOf(home, home.ruleOf("jetbrains-caches")), (Verdicts{{caches + "IdeaIC2022.2", planned},
                                                                           {caches + "GoLand2022.3", planned},
                                                                           {caches + "Toolbox", notTheTools},
                                                                           {caches + "Thesis2023.1", notTheTools},
                                                                           {caches + "PhpStorm2022.1", neverRemoved}}));
}

TEST(PresetPlanTest, goesByTheDatesThatTheTrashKeeps) {
    PlannerHome home;
    const std::string trash = ".local/share/Trash/";
    const auto info = [&](const std::string& name, const std::string& content) {
        home.home.makeFile(trash + "files/" + name);
        if (!content.empty()) home.home.makeFile(trash + "info/" + name + ".trashinfo", content);
    };
    home.now = Date::fromSeconds(4'105'123'200);  // 2100-02-01, wherever one is to within a day
    info("old", "[Trash Info]\nPath=/x\nDeletionDate=2099-12-31T00:00:00\n");
    info("younger", "[Trash Info]\nDeletionDate=2100-01-04T00:00:00\n");
    info("left over", "[Trash Info]\nDeletionDate=2001-01-01T00:00:00\n");
    info("not the user's alone", "[Trash Info]\nDeletionDate=2099-12-31T00:00:00\n");
    chmod((home / (trash + "info/not the user's alone.trashinfo")).c_str(), 0664);
    info("undated", "");
    info("odd", "[Trash Info]\nDeletionDate=yesterday\n");
    info("other group", "[Other]\nDeletionDate=2001-01-01T00:00:00\n");
    info("too long", "[Trash Info]\n" + std::string(70'000, '#') + "\nDeletionDate=2001-01-01T00:00:00\n");
    home.home.makeFile(trash + "files/linked");
    home.home.makeLink(trash + "info/linked.trashinfo", home / (trash + "info/old.trashinfo"));

    const Rule rule = home.ruleOf("old-trash");
    Verdicts expected{{trash + "files/old", planned}, {trash + "files/left over", planned}};
    for (const char* name : {"undated", "odd", "other group", "too long", "linked", "not the user's alone"})
        expected[trash + "files/" + name] = neverRemoved;
    home.home.makeFile(".Trash/made by hand");
    EXPECT_EQ(verdictsOf(home, rule), expected);
    home.now = Date::now() + days(29);
    EXPECT_FALSE(verdictsOf(home, rule).contains(trash + "files/left over")) << "the item came in now";
    chmod((home / (trash + "info")).c_str(), 0777);
    EXPECT_EQ(verdictsOf(home, rule).at(trash + "files/old"), neverRemoved) << "anybody may have dated it";
    home.planner.volume.fileSystemType = [](int) { return "msdos"; };
    const auto plan = home.plan(rule);
    ASSERT_FALSE(plan) << "nothing says when an item came in but a file that may be of another";
    EXPECT_EQ(plan.error().kind, PlanError::Kind::basisUnsupportedOnThisDisk);
}

TEST(PresetPlanTest, refusesWhatThePresetForbidsInTheWordsOfTheRuleEditor) {
    using Kind = PlanError::Kind;
    constexpr const char* toTheTrash = "so this rule can only move items to the Trash, not delete them.";
    const auto deletes = [](Rule& rule) { rule.action = CleanupAction::deletePermanently; };
    const std::tuple<const char*, void (*)(Rule&), Kind, std::string> table[] = {
        {"old-downloads", deletes, Kind::actionNotAllowed,
         "This preset only moves items to the Trash, so its rules cannot delete permanently."},
        {"xcode-derived-data", deletes, Kind::actionNotAllowed,
         std::string("Xcode keeps DerivedData in a folder chosen in its settings, ") + toTheTrash},
        {"pip-cache", deletes, Kind::actionNotAllowed,
         std::string("~/.cache/pip leads to another folder through a link, ") + toTheTrash},
        {"screenshots", [](Rule& rule) { rule.filter.includeGlobs = {"*"}; }, Kind::filterNotAllowed,
         "This preset decides which names it cleans, so the rule cannot list names to clean. It can list names to "
         "keep."},
        {"logs", [](Rule& rule) { rule.filter.scope = RuleScope::topLevelItems; }, Kind::filterNotAllowed,
         "This preset cleans files at any depth, and its rules must too."},
    };
    PlannerHome made;
    made.home.makeFolder("elsewhere/built");
    const PlannerHome home({{"com.apple.dt.Xcode IDECustomDerivedDataLocation", (made / "elsewhere/built").native()}});
    home.home.makeLink(".cache/pip", home.home.makeFolder("pip"));
    for (const auto& [preset, edit, kind, sentence] : table) {
        Rule rule = home.ruleOf(preset);
        edit(rule);
        const auto plan = home.plan(rule);
        ASSERT_FALSE(plan) << sentence;
        EXPECT_EQ(plan.error(), (PlanError{kind, sentence}));
        EXPECT_THAT(home.validationProblems(rule), Contains(sentence));
    }

    const auto built = home.plan(home.ruleOf("xcode-derived-data"));
    ASSERT_TRUE(built) << built.error().sentence;
    EXPECT_TRUE(built->roots.front().trashOnly);
    EXPECT_EQ(built->roots.front().setting, "Xcode's DerivedData location");
    const auto linked = home.plan(home.ruleOf("pip-cache"));
    ASSERT_TRUE(linked) << linked.error().sentence;
    EXPECT_TRUE(linked->roots.front().trashOnly && linked->roots.front().linkedAtPlanning);

    const PlannerHome unread({{"com.apple.screencapture location", PreferenceOther{}}});
    EXPECT_EQ(unread.plan(unread.ruleOf("screenshots")).error().kind, Kind::settingUnreadable);
}

TEST(PresetPlanTest, holdsARuleToThePresetsAgeAndDate) {
    PlannerHome home;
    makeAged(home, "Downloads/arrived", 999);
    Rule rule = home.ruleOf("old-downloads");
    EXPECT_THAT(verdictsOf(home, rule), SizeIs(1));
    rule.filter.minAgeDays = 45;
    EXPECT_THAT(verdictsOf(home, rule), IsEmpty()) << "a rule may want more";
    rule.filter.minAgeDays.reset();
    rule.filter.ageBasis = AgeBasis::modified;
    home.now = Date::now() + days(29);
    EXPECT_THAT(verdictsOf(home, rule), IsEmpty()) << "it came in 29 days ago, whatever its content is dated";

    home.planner.volume.fileSystemType = [](int) { return "msdos"; };
    const auto plan = home.plan(rule);
    ASSERT_FALSE(plan) << "the preset goes by a date that this disk does not record";
    EXPECT_EQ(plan.error().kind, PlanError::Kind::basisUnsupportedOnThisDisk);
    EXPECT_THAT(plan.error().sentence, Not(HasSubstr("Edit the rule"))) << "no edit of the rule changes the preset";
}

TEST(PresetPlanTest, takesAFolderOfTwoNamesOnceAndNoneInsideAnother) {
    const PlannerHome home;
    makeAged(home, ".cache/pip/http/a", 1);
    home.home.makeLink("Library/Caches/pip", home / ".cache/pip");
    EXPECT_EQ(verdictsOf(home, home.ruleOf("pip-cache")), (Verdicts{{".cache/pip/http", planned}}));

    home.home.makeFolder(".cache/yarn/inner");
    home.home.makeLink("Library/Caches/Yarn", home / ".cache/yarn/inner");
    const auto nested = home.plan(home.ruleOf("yarn-cache"));
    ASSERT_FALSE(nested);
    EXPECT_EQ(nested.error().kind, PlanError::Kind::overlappingRoots);
    EXPECT_THAT(nested.error().sentence, Not(HasSubstr("choose"))) << "a preset's folders are not chosen";
}

}  // namespace
}  // namespace vostrel
