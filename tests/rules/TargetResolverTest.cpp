#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "SampleRules.h"
#include "filesystem/PathGuards.h"
#include "rules/TargetResolver.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Kind = ResolveError::Kind;

const char* const screenshotKey = "com.apple.screencapture location";
const char* const derivedDataKey = "com.apple.dt.Xcode IDECustomDerivedDataLocation";

class TargetResolverTest : public testing::Test {
protected:
    [[nodiscard]] auto resolve(const RuleTarget& target, const FixedDefaults& defaults = FixedDefaults({})) const {
        return TargetResolver(home, defaults, guards, {::getuid(), disk / "temporary"}).resolve(target, catalog);
    }
    [[nodiscard]] auto resolve(const RuleTarget& target, const char* key, const DefaultsValue& value) const {
        return resolve(target, FixedDefaults({{key, value}}));
    }

    TemporaryFolder disk;
    fs::path home = disk.makeFolder("home");
    PathGuards guards{home};
    PresetCatalog catalog = sampleCatalog();
};

TEST_F(TargetResolverTest, resolvesEachFolderInTheTargetsOrder) {
    disk.makeFolder("home/code");
    const auto folder = resolve(FolderTarget{home / "code"});
    ASSERT_TRUE(folder);
    ASSERT_EQ(folder->size(), 1);
    EXPECT_EQ(folder->front().url, home / "code");
    EXPECT_TRUE(folder->front().mustBeOwnedByUser);
    EXPECT_FALSE(folder->front().linked || folder->front().trashOnly || folder->front().screenshotFolder);

    const auto scan = resolve(ProjectScanTarget{{home / "z", home / "a"}, {ArtifactKind::dist}, 30});
    ASSERT_TRUE(scan);
    ASSERT_EQ(scan->size(), 2);
    EXPECT_EQ(scan->at(0).url, home / "z");
    EXPECT_EQ(scan->at(1).url, home / "a");
}

TEST_F(TargetResolverTest, refusesWhatNamesNoFolder) {
    for (const char* path : {"", "code", "~/code", "/home/../etc", "."}) {
        EXPECT_EQ(resolve(FolderTarget{path}).error().kind, Kind::rootMissing) << path;
        EXPECT_EQ(resolve(ProjectScanTarget{{home / "a", path}, {}, 30}).error().kind, Kind::rootMissing) << path;
    }
    EXPECT_EQ(resolve(PresetTarget{"gone"}).error(),
              (ResolveError{Kind::presetUnknown, "This preset is not available in this version of Vostrel."}));
}

TEST_F(TargetResolverTest, looksForNoProjectsInTheLibrary) {
    disk.makeFolder("home/Library/Developer");
    disk.makeLink("home/link", home / "Library/Developer");
    for (const char* inside : {"Library", "library/Caches", "Library/", "link/apps"}) {
        EXPECT_EQ(resolve(ProjectScanTarget{{home / inside}, {}, 30}).error(),
                  (ResolveError{Kind::protectedRoot,
                                "Vostrel does not look for projects inside ~/Library, where apps keep their own "
                                "files."}))
            << inside;
    }
    EXPECT_TRUE(resolve(ProjectScanTarget{{home / "Library2"}, {}, 30}));
}

TEST_F(TargetResolverTest, readsWhereScreenshotsAreSaved) {
    const auto byDefault = resolve(PresetTarget{"screenshots"});
    ASSERT_TRUE(byDefault);
    EXPECT_EQ(byDefault->front().url, home / "Desktop");
    EXPECT_TRUE(byDefault->front().screenshotFolder);
    EXPECT_TRUE(byDefault->front().trashOnly);
    EXPECT_FALSE(byDefault->front().setting);
    EXPECT_EQ(guards.refusalForRoot(home / "Desktop", byDefault->front().exception), std::nullopt);

    const auto chosen = resolve(PresetTarget{"screenshots"}, screenshotKey, (home / "Shots").native());
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->front().url, home / "Shots");
    EXPECT_TRUE(chosen->front().screenshotFolder);
    EXPECT_EQ(chosen->front().setting, "the screenshot location");
}

TEST_F(TargetResolverTest, refusesSettingsThatNameNoFolderItMayTrust) {
    disk.makeFolder("home/Library/Developer/Xcode/Archives");
    disk.makeLink("elsewhere", home / "Library/Developer/Xcode");
    const std::string besideArchives =
        ", inside Xcode's own folder next to its archives and device support, so Vostrel leaves it alone.";
    const std::string holdsAll = ", which also holds Xcode's other folders, so Vostrel leaves it alone.";
    const std::string opening = "Xcode's DerivedData location is set to ";
    const auto at = [&](const char* relative) { return DefaultsValue((home / relative).native()); };
    struct Row {
        const char* preset;
        DefaultsValue value;
        std::string sentence;
    };
    const Row table[] = {
        {"screenshots", PreferenceOther{},
         "Vostrel could not read where screenshots are saved, so it leaves them alone."},
        {"screenshots", std::string("~/Shots"),
         "The screenshot folder is set to \"~/Shots\", which is not a full folder path, so Vostrel leaves it alone."},
        {"screenshots", std::string(),
         "The screenshot folder is set to \"\", which is not a full folder path, so Vostrel leaves it alone."},
        {"derived-data", PreferenceOther{},
         "Vostrel could not read where Xcode keeps DerivedData, so it leaves it alone."},
        {"derived-data", std::string("Build"),
         "Xcode's DerivedData location is set to \"Build\", which is not a full folder path, so Vostrel cannot tell "
         "which folder Xcode uses."},
        {"derived-data", std::string("/Volumes/../Build"),
         "Xcode's DerivedData location is set to \"/Volumes/../Build\", which is not a full folder path, so Vostrel "
         "cannot tell which folder Xcode uses."},
        {"derived-data", at("Library/Developer/Xcode/Archives"),
         opening + "~/Library/Developer/Xcode/Archives" + besideArchives},
        {"derived-data", at("Library/Developer/Xcode/deriveddata"),
         opening + "~/Library/Developer/Xcode/deriveddata" + besideArchives},
        {"derived-data", DefaultsValue((disk / "elsewhere/Build").native()),
         opening + (disk / "elsewhere/Build").native() + besideArchives},
        {"derived-data", at("Library/Developer/Xcode"), opening + "~/Library/Developer/Xcode" + holdsAll},
        {"derived-data", at("library/developer/"), opening + "~/library/developer" + holdsAll},
        {"derived-data", DefaultsValue(home.native()), opening + "~" + holdsAll},
        {"derived-data", DefaultsValue((disk / "elsewhere").native()),
         opening + (disk / "elsewhere").native() + holdsAll},
    };
    for (const auto& [preset, value, sentence] : table) {
        const char* key = std::string(preset) == "screenshots" ? screenshotKey : derivedDataKey;
        const auto roots = resolve(PresetTarget{preset}, key, value);
        EXPECT_EQ(roots ? "resolved" : roots.error().sentence, sentence);
        EXPECT_EQ(roots ? Kind::rootMissing : roots.error().kind, Kind::settingUnreadable) << sentence;
    }
}

TEST_F(TargetResolverTest, readsWhereXcodeKeepsDerivedData) {
    const fs::path standard = home / "Library/Developer/Xcode/DerivedData";
    for (const auto& roots : {resolve(PresetTarget{"derived-data"}),
                              resolve(PresetTarget{"derived-data"}, derivedDataKey, standard.native()),
                              resolve(PresetTarget{"derived-data"}, derivedDataKey, standard.native() + "/")}) {
        ASSERT_TRUE(roots);
        EXPECT_EQ(roots->front().url, standard);
        EXPECT_FALSE(roots->front().setting || roots->front().trashOnly);
    }

    const auto chosen = resolve(PresetTarget{"derived-data"}, derivedDataKey, (home / "Build").native());
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->front().url, home / "Build");
    EXPECT_EQ(chosen->front().setting, "Xcode's DerivedData location");
    EXPECT_TRUE(chosen->front().trashOnly) << "only the Trash gives back what a wrong setting names";

    const fs::path documents = home / "Documents/Build";
    const auto refused = resolve(PresetTarget{"derived-data"}, derivedDataKey, documents.native());
    ASSERT_FALSE(refused) << "a setting is no permission for a protected tree";
    EXPECT_EQ(refused.error().kind, Kind::protectedRoot);
    EXPECT_EQ(refused.error().sentence, guards.refusalForRoot(documents));
}

TEST_F(TargetResolverTest, findsTheUsersOwnTemporaryFoldersByPrefix) {
    const auto urls = [](const auto& roots) {
        std::vector<fs::path> paths;
        for (const ResolvedRoot& root : roots.value())
            paths.push_back(root.url);
        return paths;
    };
    const fs::path kept = home / "Library/Caches/kept";
    EXPECT_THAT(urls(resolve(PresetTarget{"temporary"})), ElementsAre(kept)) << "without a temporary folder";

    disk.makeFolder("temporary/session-b");
    disk.makeFolder("temporary/session-a");
    disk.makeFolder("temporary/other-session-c");
    disk.makeFolder("temporary/Session-d");
    disk.makeFile("temporary/session-file");
    disk.makeLink("temporary/session-link", home);
    EXPECT_THAT(urls(resolve(PresetTarget{"temporary"})),
                ElementsAre(kept, disk / "temporary/session-a", disk / "temporary/session-b"));

    const FixedDefaults defaults({});
    const TargetResolver another(home, defaults, guards, {::getuid() + 1, disk / "temporary"});
    EXPECT_THAT(urls(another.resolve(PresetTarget{"temporary"}, catalog)), ElementsAre(kept));
}

TEST_F(TargetResolverTest, marksRootsThatALinkLeadsTo) {
    disk.makeFolder("real/inside");
    disk.makeLink("home/link", disk / "real");
    for (const char* path : {"link", "link/", "link/inside", "link/not-there"}) {
        const auto roots = resolve(FolderTarget{home / path});
        ASSERT_TRUE(roots);
        EXPECT_TRUE(roots->front().linked && roots->front().trashOnly) << path;
    }
    const fs::path linkedHome = disk.makeLink("linked-home", home);
    disk.makeFolder("home/plain");
    const FixedDefaults defaults({});
    const TargetResolver throughLink(linkedHome, defaults, guards, {::getuid(), disk / "temporary"});
    EXPECT_FALSE(throughLink.resolve(FolderTarget{linkedHome / "plain"}, catalog)->front().linked)
        << "what leads to the home folder is the system's choice";
}

TEST_F(TargetResolverTest, trustsOnlyFoldersThatNobodyElseCanChange) {
    const FixedDefaults defaults({});
    const TargetResolver resolver(home, defaults, guards, {501, disk / "temporary"});
    const auto isRefused = [&](EntryType type, std::uint32_t owner, std::uint16_t mode) {
        FileStatus status;
        status.type = type;
        status.owner = owner;
        status.mode = mode;
        return resolver.ownershipRefusal("/home/ada/Cache", status).has_value();
    };
    EXPECT_FALSE(isRefused(EntryType::folder, 501, 0755));
    EXPECT_FALSE(isRefused(EntryType::folder, 501, 0700));
    EXPECT_TRUE(isRefused(EntryType::folder, 501, 0775));
    EXPECT_TRUE(isRefused(EntryType::folder, 501, 0757));
    EXPECT_TRUE(isRefused(EntryType::folder, 501, 01777));
    EXPECT_TRUE(isRefused(EntryType::folder, 0, 0755));
    EXPECT_TRUE(isRefused(EntryType::file, 501, 0755));
    EXPECT_EQ(resolver.ownershipRefusal("/home/ada/Cache", std::nullopt),
              "/home/ada/Cache is not a folder only you can change, so Vostrel leaves it alone.");
}

}  // namespace
}  // namespace vostrel
