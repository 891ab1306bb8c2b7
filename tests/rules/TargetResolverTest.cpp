#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

#include "SampleRules.h"
#include "filesystem/PathGuards.h"
#include "rules/TargetResolver.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using Row = std::pair<RuleTarget, std::string>;

class TargetResolverTest : public testing::Test {
protected:
    [[nodiscard]] TargetResolver resolver(const FixedDefaults& defaults, std::uint32_t user = ::getuid()) const {
        return {home, defaults, guards, {user, disk / "temporary"}};
    }

    /// The roots as people see them, each with what limits it; or what kind of failure there is, and its sentence.
    [[nodiscard]] std::string outcome(const RuleTarget& target, const TargetResolver& by) const {
        constexpr const char* kinds[] = {"missing", "unreadable", "setting", "protected", "unknown"};
        const auto roots = by.resolve(target, sampleCatalog());
        if (!roots) return fmt::format("{}: {}", kinds[std::to_underlying(roots.error().kind)], roots.error().sentence);
        std::vector<std::string> texts;
        for (const ResolvedRoot& root : *roots) {
            std::string text = guards.displayPath(root.url);
            if (root.linked) text += " linked";
            if (root.trashOnly) text += " trashOnly";
            if (root.screenshotFolder) text += " screenshots";
            if (root.setting) text += " by " + *root.setting;
            if (!root.mustBeOwnedByUser) text += " anyone's";
            if (guards.refusalForRoot(root.url, root.exception)) text += " refused";
            texts.push_back(text);
        }
        return fmt::format("{}", fmt::join(texts, ", "));
    }
    void check(const std::vector<Row>& table) const {
        const FixedDefaults defaults({});
        for (const auto& [target, expected] : table)
            EXPECT_EQ(outcome(target, resolver(defaults)), expected);
    }

    TemporaryFolder disk;
    fs::path home = disk.makeFolder("home");
    PathGuards guards{home};
};

TEST_F(TargetResolverTest, resolvesTheFoldersThatARuleNames) {
    const std::string inLibrary =
        "protected: Vostrel does not look for projects inside ~/Library, where apps keep their own files.";
    disk.makeFolder("real/inside");
    disk.makeFolder("home/Library/Developer");
    disk.makeLink("home/link", disk / "real");
    disk.makeLink("home/apps", home / "Library/Developer");
    const auto scanOf = [&](const fs::path& folder) { return ProjectScanTarget{{home / "z", home / folder}, {}, 30}; };
    check({
        {FolderTarget{home / "code"}, "~/code"},
        {FolderTarget{home / "link"}, "~/link linked trashOnly"},
        {FolderTarget{home / "link/not-there"}, "~/link/not-there linked trashOnly"},
        {scanOf("Library2"), "~/z, ~/Library2"},
        {scanOf("Library"), inLibrary},
        {scanOf("library/Caches"), inLibrary},
        {scanOf("apps/inside"), inLibrary},
    });
    for (const char* path : {"", "code", "~/code", "/home/../etc", "."}) {
        const std::string missing =
            "missing: The folder does not exist, or the rule has no folder. Edit the rule and choose one.";
        check({{FolderTarget{path}, missing}, {ProjectScanTarget{{home / "a", path}, {}, 30}, missing}});
    }

    const FixedDefaults defaults({});
    const TargetResolver throughLink(disk.makeLink("linked-home", home), defaults, guards, {::getuid(), "/tmp"});
    EXPECT_EQ(outcome(FolderTarget{disk / "linked-home/plain"}, throughLink), (disk / "linked-home/plain").native())
        << "what leads to the home folder is the system's choice";
}

TEST_F(TargetResolverTest, followsOtherApplicationsSettingsAsFarAsTheyCanBeTrusted) {
    disk.makeFolder("home/Library/Developer/Xcode/Archives");
    const std::string elsewhere = disk.makeLink("elsewhere", home / "Library/Developer/Xcode");
    const auto asXcodes = [](const std::string& folder, const char* why) {
        return "setting: Xcode's DerivedData location is set to " + folder + ", " + why;
    };
    const char* const noPath = "which is not a full folder path, so Vostrel cannot tell which folder Xcode uses.";
    const char* const besideArchives =
        "inside Xcode's own folder next to its archives and device support, so Vostrel leaves it alone.";
    const char* const holdsAll = "which also holds Xcode's other folders, so Vostrel leaves it alone.";
    const std::tuple<std::string, DefaultsValue, std::string> table[] = {
        {"screenshots", PreferenceMissing{}, "~/Desktop trashOnly screenshots"},
        {"screenshots", home / "Shots", "~/Shots trashOnly screenshots by the screenshot location"},
        {"screenshots", PreferenceOther{},
         "setting: Vostrel could not read where screenshots are saved, so it leaves them alone."},
        {"screenshots", "~/Shots",
         "setting: The screenshot folder is set to \"~/Shots\", which is not a full folder path, so Vostrel leaves it "
         "alone."},
        {"derived-data", PreferenceMissing{}, "~/Library/Developer/Xcode/DerivedData"},
        {"derived-data", home / "Build", "~/Build trashOnly by Xcode's DerivedData location"},
        {"derived-data", PreferenceOther{},
         "setting: Vostrel could not read where Xcode keeps DerivedData, so it leaves it alone."},
        {"derived-data", "/Volumes/../Build", asXcodes("\"/Volumes/../Build\"", noPath)},
        {"derived-data", home / "Library/Developer/Xcode/deriveddata",
         asXcodes("~/Library/Developer/Xcode/deriveddata", besideArchives)},
        {"derived-data", elsewhere + "/Build", asXcodes(elsewhere + "/Build", besideArchives)},
        {"derived-data", home / "library/developer/", asXcodes("~/library/developer", holdsAll)},
        {"derived-data", elsewhere, asXcodes(elsewhere, holdsAll)},
        {"derived-data", home / "Documents/Build",
         "protected: " + guards.refusalForRoot(home / "Documents/Build").value_or("")},
    };
    for (const auto& [preset, value, expected] : table) {
        const char* key = preset == "derived-data" ? "com.apple.dt.Xcode IDECustomDerivedDataLocation"
                                                   : "com.apple.screencapture location";
        const FixedDefaults defaults({{key, value}});
        EXPECT_EQ(outcome(PresetTarget{preset}, resolver(defaults)), expected);
    }
}

TEST_F(TargetResolverTest, findsTheTemporaryFolderThatIsNamedByTheUsersNumber) {
    const std::string kept = "~/Library/Caches/kept";
    check({{PresetTarget{"temporary"}, kept}});
    const auto name = [](unsigned more) { return fmt::format("temporary/session-{}", ::getuid() + more); };
    disk.makeFolder(name(0));
    disk.makeFolder(name(0) + "-mine");
    disk.makeFolder(name(1));
    disk.makeFile(name(2));
    disk.makeLink(name(3), home);
    check({{PresetTarget{"temporary"}, fmt::format("{}, {}", kept, (disk / name(0)).native())}});
    const FixedDefaults defaults({});
    for (const unsigned more : {1U, 2U, 3U})
        EXPECT_EQ(outcome(PresetTarget{"temporary"}, resolver(defaults, ::getuid() + more)), kept) << more;
}

TEST_F(TargetResolverTest, trustsOnlyFoldersThatNobodyElseCanChange) {
    const FixedDefaults defaults({});
    const std::optional<std::string> refusal =
        "/home/ada/Cache is not a folder only you can change, so Vostrel leaves it alone.";
    for (const auto& [type, owner, mode, isTrusted] : {std::tuple(EntryType::folder, 501U, 0755, true),
                                                       {EntryType::folder, 501U, 0775, false},
                                                       {EntryType::folder, 501U, 0757, false},
                                                       {EntryType::folder, 0U, 0755, false},
                                                       {EntryType::file, 501U, 0755, false}}) {
        FileStatus status;
        status.type = type, status.owner = owner, status.mode = static_cast<std::uint16_t>(mode);
        EXPECT_EQ(resolver(defaults, 501).ownershipRefusal("/home/ada/Cache", status),
                  isTrusted ? std::nullopt : refusal);
    }
    EXPECT_EQ(resolver(defaults, 501).ownershipRefusal("/home/ada/Cache", std::nullopt), refusal);
}

}  // namespace
}  // namespace vostrel
