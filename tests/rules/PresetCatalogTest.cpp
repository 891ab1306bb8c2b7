#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

#include "base/Visit.h"
#include "filesystem/PathGuards.h"
#include "rules/PresetCatalog.h"
#include "rules/PresetFolders.h"
#include "rules/PresetRows.h"
#include "rules/TargetResolver.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string text(const PathSource& source) {
    return visit(
        source, [](const HomeSource& home) { return "~/" + home.path; },
        [](const UserTempSource& temporary) { return temporary.prefix + "* in the temporary folder"; },
        [](const XcodeDerivedDataSource&) { return std::string("Xcode's DerivedData folder"); },
        [](const ScreenshotFolderSource&) { return std::string("the screenshot folder"); },
        [](const HomeTrashSource&) { return std::string("the home Trash"); });
}

std::string text(Preset::Group group) {
    constexpr const char* names[] = {"developer", "appCaches", "browsers", "files"};
    return names[static_cast<int>(group)];
}

std::string text(const std::vector<RuleTrigger>& triggers) {
    if (triggers == std::vector<RuleTrigger>{BelowLineTrigger{}}) return "below the line";
    if (triggers == std::vector<RuleTrigger>{EndOfDayTrigger{}}) return "end of day";
    return "something else";
}

std::string flags(const Preset& preset) {
    std::vector<std::string> set;
    if (preset.regenerable) set.emplace_back("regenerable");
    if (preset.largeRedownload) set.emplace_back("large download");
    if (preset.recommended) set.emplace_back("recommended");
    return fmt::format("{}", fmt::join(set, ", "));
}

/// A preset as the checked-in text has it, a line for each thing said of it.
std::string rendered(const Preset& preset) {
    std::string page = fmt::format("{} | {} | {}\n", preset.id, text(preset.group), preset.name);
    const auto line = [&](std::string_view label, const std::string& said) {
        if (!said.empty()) page += fmt::format("  {:<9} {}\n", label, said);
    };
    const auto& linuxRows = presetLinuxRows();
    const auto onLinux = std::ranges::find(linuxRows, preset.id, &PresetLinuxRow::id);
    line("summary", preset.summary);
    line("reason", preset.reason);
    for (const auto& source : preset.sources)
        line("folder", text(source));
    if (onLinux != linuxRows.end()) {
        for (const auto& source : onLinux->sources)
            line("on Linux", text(source));
    }
    line("cleans", fmt::format("{}", fmt::join(preset.namePatterns, ", ")));
    line("keeps", fmt::format("{}", fmt::join(preset.excludePatterns, ", ")));
    line("items", preset.scope == RuleScope::allFiles ? "files at any depth" : "each item");
    if (preset.minAgeDays)
        line("age",
             fmt::format("{} days, {}", *preset.minAgeDays, preset.ageBasis == AgeBasis::added ? "added" : "modified"));
    for (const auto& folder : preset.usedBeside)
        line("opened", "~/" + folder);
    line("action", std::string(preset.action == CleanupAction::trash ? "trash" : "delete") +
                       (preset.trashOnly ? ", trash only" : ""));
    line("flags", flags(preset));
    line("waits", fmt::format("{}", fmt::join(preset.pauseWhileRunning, ", ")));
    if (onLinux != linuxRows.end()) line("on Linux", fmt::format("{}", fmt::join(onLinux->pauseWhileRunning, ", ")));
    line("suggested", text(preset.suggestedTriggers));
    line("revision", std::to_string(preset.semanticsRevision));
    return page;
}

std::vector<std::string> idsOf(const std::function<bool(const Preset&)>& test) {
    std::vector<std::string> ids;
    const PresetCatalog catalog = PresetCatalog::offered(SystemKind::linux);
    for (const Preset& preset : catalog.all()) {
        if (test(preset)) ids.push_back(preset.id);
    }
    return ids;
}

TEST(PresetCatalogTest, saysWhatTheCheckedInTextSays) {
    std::ifstream file("rules/presets/catalogue.txt");
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(expected.empty());
    std::vector<std::string> pages;
    const PresetCatalog catalog = PresetCatalog::offered(SystemKind::macOS);
    for (const Preset& preset : catalog.all())
        pages.push_back(rendered(preset));
    EXPECT_EQ(fmt::format("{}", fmt::join(pages, "\n")), expected);
}

TEST(PresetCatalogTest, keepsItsPromises) {
    using Ids = std::vector<std::string>;
    EXPECT_EQ(idsOf([](const Preset& preset) { return preset.action == CleanupAction::deletePermanently; }),
              Ids{"old-trash"});
    EXPECT_EQ(idsOf(&Preset::trashOnly), (Ids{"xcode-archives", "agent-temp", "logs", "old-downloads", "screenshots"}));
    EXPECT_EQ(idsOf([](const Preset& preset) { return preset.scope != RuleScope::topLevelItems; }), Ids{"logs"});
    EXPECT_EQ(idsOf([](const Preset& preset) { return preset.ageBasis == AgeBasis::added; }),
              (Ids{"old-downloads", "old-trash"}));
    EXPECT_EQ(idsOf([](const Preset& preset) { return !preset.decidesNames(); }),
              (Ids{"swiftpm-cache", "cocoapods-cache", "carthage-cache", "vscode-caches", "chrome-cache", "edge-cache",
                   "firefox-cache", "brave-cache", "claude-web-cache", "google-updater-downloads", "zoom-cache",
                   "old-downloads", "old-trash"}));
    for (const PresetLinuxRow& row : presetLinuxRows())
        EXPECT_NE(PresetCatalog::offered(SystemKind::macOS).preset(row.id), nullptr) << row.id;
}

TEST(PresetCatalogTest, changesItsDefinitionWithWhateverDecidesWhatIsCleaned) {
    const PresetCatalog catalog = PresetCatalog::offered(SystemKind::macOS);
    const Preset& preset = *catalog.preset("jetbrains-caches");
    std::set<std::string> definitions{preset.definition()};
    const std::vector<std::function<void(Preset&)>> edits{
        [](Preset& other) { other.semanticsRevision = 2; },
        [](Preset& other) { other.sources.pop_back(); },
        [](Preset& other) { other.namePatterns.emplace_back("*"); },
        [](Preset& other) { other.excludePatterns.emplace_back("*"); },
        [](Preset& other) { other.scope = RuleScope::allFiles; },
        [](Preset& other) { other.trashOnly = true; },
        [](Preset& other) { other.minAgeDays.reset(); },
        [](Preset& other) { other.ageBasis = AgeBasis::added; },
        [](Preset& other) { other.usedBeside.clear(); },
    };
    for (const auto& edit : edits) {
        Preset other = preset;
        edit(other);
        definitions.insert(other.definition());
    }
    EXPECT_EQ(definitions.size(), 1 + edits.size());
    EXPECT_EQ(definition(PresetTarget{preset.id}, catalog), "preset:jetbrains-caches;" + preset.definition());
}

/// A made-up disk without links, on which everything that is asked for exists.
GuardSurroundings surroundings(SystemKind system) {
    GuardSurroundings around;
    around.home = system == SystemKind::macOS ? "/Users/ann" : "/home/ann";
    around.temporaryFolder = system == SystemKind::macOS ? "/var/folders/zz/ann/T" : "/tmp";
    around.userID = 501;
    around.system = system;
    around.resolve = [](const std::filesystem::path& path) { return path; };
    around.examine = [](const std::filesystem::path& path) {
        return GuardSurroundings::FileOwner{{1, std::hash<std::string>()(path)}, 501};
    };
    for (auto* test : {&around.isMountPoint, &around.isInICloud, &around.isDatalessPath})
        *test = [](const std::filesystem::path&) { return false; };
    return around;
}

TEST(PresetCatalogTest, namesNoPlaceThatTheGuardsRefuse) {
    for (const SystemKind system : {SystemKind::macOS, SystemKind::linux}) {
        const GuardSurroundings around = surroundings(system);
        const PathGuards guards(around);
        const FixedDefaults defaults({});
        const TargetResolver resolver(around.home, defaults, guards, {501, around.temporaryFolder});
        const PresetCatalog catalog = PresetCatalog::offered(system);
        for (const Preset& preset : catalog.all()) {
            const auto roots = resolver.resolve(preset);
            ASSERT_TRUE(roots) << preset.id;
            for (const ResolvedRoot& root : *roots) {
                EXPECT_EQ(guards.refusalForRoot(root.url, root.exception), std::nullopt) << preset.id;
                const char* item = root.screenshotFolder ? "Screenshot 2024-01-31 at 9.05.07.png" : "v1.2";
                const auto walk = guards.walkRoot(root.url, root.exception);
                EXPECT_EQ(guards.refusalForWalkedItem(walk, item), std::nullopt) << preset.id;
            }
        }
        EXPECT_EQ(guards.refusalForRoot(around.temporaryFolder / "claude-501"), std::nullopt);
    }
}

TEST(PresetCatalogTest, listsTheFoldersThatExist) {
    TemporaryFolder disk;
    disk.makeFolder("Library/Caches/pip");
    disk.makeFolder(".cache/pip");
    disk.makeFile(".npm/_cacache");
    const PathGuards guards(disk.path());
    const FixedDefaults broken({{"com.apple.dt.Xcode IDECustomDerivedDataLocation", PreferenceOther{}}});
    const TargetResolver resolver(disk.path(), broken, guards, {501, disk / "temporary"});
    const PresetCatalog catalog = PresetCatalog::offered(SystemKind::linux);
    const auto folders = [&](const char* id) { return PresetFolders::of(*catalog.preset(id), resolver).folders; };
    EXPECT_THAT(folders("pip-cache"), ElementsAre(disk / "Library/Caches/pip", disk / ".cache/pip"));
    EXPECT_THAT(folders("npm-cache"), IsEmpty()) << "a file is no folder";
    EXPECT_THAT(folders("xcode-derived-data"), IsEmpty()) << "a setting that cannot be read";
    EXPECT_EQ(cleanupCategory(PresetTarget{"pip-cache"}, catalog), CleanupCategory::regenerable);
    EXPECT_EQ(cleanupCategory(PresetTarget{"old-trash"}, catalog), CleanupCategory::userFolders);
}

}  // namespace
}  // namespace vostrel
