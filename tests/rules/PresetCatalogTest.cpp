#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>

#include "SampleRules.h"
#include "filesystem/PathGuards.h"
#include "rules/PresetFolders.h"
#include "rules/RuleFields.h"
#include "rules/TargetResolver.h"
#include "stores/JSONCoding.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What a preset cleans and what its rule does when, each as it is stored.
std::string terms(const Preset& preset) {
    const auto stored = [](const auto& value) {
        return JSONCoding::encoder(JSONLayout::compact).encode(value).value();
    };
    return fmt::format("  cleans {}\n  action {}, triggers {}, waits for {}\n", preset.definition(),
                       stored(preset.action), stored(preset.suggestedTriggers), stored(preset.pauseWhileRunning));
}

TEST(PresetCatalogTest, saysWhatTheCheckedInTextSays) {
    std::ifstream file("rules/presets/catalogue.txt");
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    std::string pages;
    const auto mac = PresetCatalog::offered(SystemKind::macOS);
    const auto linux = PresetCatalog::offered(SystemKind::linux);
    for (const Preset& each : mac.all()) {
        constexpr const char* groups[] = {"developer", "appCaches", "browsers", "files"};
        pages +=
            fmt::format("{} | {} | {}{}{}{}\n  {}\n  {}\n", each.id, groups[static_cast<int>(each.group)], each.name,
                        each.regenerable ? ", regenerable" : "", each.largeRedownload ? ", large download" : "",
                        each.recommended ? ", recommended" : "", each.summary, each.reason);
        const std::string there = terms(*linux.preset(each.id));
        pages += terms(each) + (there == terms(each) ? "\n" : " on Linux\n" + there + "\n");
    }
    EXPECT_EQ(pages, expected);
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
