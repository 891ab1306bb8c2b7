#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <cerrno>
#include <map>

#include "filesystem/PathGuards.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

const std::string cloudRoot = "Vostrel never cleans folders stored in iCloud.";
const std::string otherHome =
    "Vostrel never cleans inside another user's home folder, or a home folder on another disk.";
const std::string mediaStore = "Vostrel never cleans the stores of Apple's Music, TV and Podcasts apps.";
const std::string libraryFile = "Vostrel never cleans photo, music or video libraries, disk images or backups.";
const std::string open;

std::string disk(const std::string& shown) {
    return "Vostrel never removes a whole disk (" + shown + ").";
}
std::string inside(const std::string& shown) {
    return "Vostrel never cleans inside " + shown + ", because it holds your documents, settings or the system.";
}
std::string whole(const std::string& shown) {
    return "Vostrel will not clean " + shown + " as a whole. Choose a folder inside it.";
}
std::string holds(const std::string& shown, const std::string& place) {
    return "Vostrel never removes " + shown + ", because that would remove " + place + ".";
}
std::string unreadable(const std::string& shown) {
    return "Vostrel could not check " + shown + ", so it leaves it alone.";
}

/// A system without a disk: every path exists and leads to itself but for the links listed.
struct FakeSystem {
    std::map<std::string, std::string> links;
    std::map<std::string, std::uint32_t> owners;
    std::vector<std::string> mounts;
    std::vector<std::string> inCloud;
    int resolveError = 0;
    std::vector<std::string> asked;

    GuardSurroundings surroundings(const std::string& home, SystemKind system) {
        GuardSurroundings around;
        around.home = home;
        around.accountHome = home;
        around.temporaryFolder = system == SystemKind::linux ? "/tmp" : "/var/folders/zz/ann/T";
        around.userID = 501;
        around.system = system;
        owners.emplace("/var/folders/zz/ann/T", 501);
        around.resolve = [this](const std::filesystem::path& path) { return resolve(path); };
        around.examine = [this](const std::filesystem::path& path) { return examine(path); };
        around.isMountPoint = [this](const std::filesystem::path& path) { return isAmong(mounts, "mount", path); };
        around.isInICloud = [this](const std::filesystem::path& path) { return isAmong(inCloud, "cloud", path); };
        around.isDatalessPath = [](const std::filesystem::path&) { return false; };
        return around;
    }

private:
    std::expected<std::filesystem::path, int> resolve(const std::filesystem::path& path) {
        asked.push_back("resolve " + path.native());
        if (resolveError != 0) return std::unexpected(resolveError);
        return reached(path);
    }

    std::optional<GuardSurroundings::FileOwner> examine(const std::filesystem::path& path) {
        asked.push_back("examine " + path.native());
        const auto file = reached(path).native();
        const auto owner = owners.find(file);
        if (owner == owners.end()) return std::nullopt;
        return GuardSurroundings::FileOwner{{1, std::hash<std::string>()(file)}, owner->second};
    }

    std::filesystem::path reached(const std::filesystem::path& path) const {
        for (const auto& [link, target] : links) {
            if (path.native() == link || path.native().starts_with(link + "/")) {
                return target + path.native().substr(link.size());
            }
        }
        return path;
    }

    bool isAmong(const std::vector<std::string>& places, const std::string& question,
                 const std::filesystem::path& path) {
        asked.push_back(question + " " + path.native());
        return std::ranges::find(places, path.native()) != places.end();
    }
};

struct Row {
    std::string path;
    std::string asRoot;
    std::string asItem;
};

Row allowed(const std::string& path) {
    return {path, open, open};
}
Row refused(const std::string& path, const std::string& sentence) {
    return {path, sentence, sentence};
}
Row place(const std::string& path, const std::string& shown) {
    return {path, whole(shown), holds(shown, shown)};
}

/// Every way of asking must agree: an item whatever is known of it, and a walk from far above.
void expectRefusals(const PathGuards& guards, const std::vector<Row>& rows) {
    const auto top = guards.walkRoot("/");
    for (const auto& [path, asRoot, asItem] : rows) {
        EXPECT_EQ(guards.refusalForRoot(path).value_or(open), asRoot) << path;
        EXPECT_EQ(guards.refusalForItem(path).value_or(open), asItem) << path;
        EXPECT_EQ(guards.refusalForVerifiedItem(path).value_or(open), asItem) << path;
        if (path.starts_with('/')) {
            EXPECT_EQ(guards.refusalForItem("/System/Volumes/Data" + path).has_value(), asItem != open) << path;
        }
        if (path.size() < 2 || path[0] != '/' || path != std::filesystem::path(path).lexically_normal()) continue;
        EXPECT_EQ(guards.refusalForWalkedItem(top, path.substr(1)).value_or(open), asItem) << path;
    }
}

TEST(PathGuardsTest, refusesThePlacesOfTheSystemAndOfOthers) {
    FakeSystem system;
    auto surroundings = system.surroundings("/Users/ann", SystemKind::macOS);
    surroundings.packagePrefix = "/opt/packages";
    expectRefusals(PathGuards(surroundings),
                   {
                       refused("/", disk("/")),
                       refused("/System", inside("/System")),
                       refused("/Library/Caches/x", inside("/Library")),
                       refused("/usr/local/bin", inside("/usr")),
                       refused("/usr/local/Homebrew/x", inside("/usr/local/Homebrew")),
                       {"/opt", whole("/opt"), holds("/opt", "/opt/homebrew")},
                       refused("/opt/packages/x", inside("/opt/packages")),
                       allowed("/opt/tool"),
                       allowed("/libraries"),
                       refused("/System/Volumes/Data", disk("/")),
                       refused("/System/Volumes/Data/.fseventsd", inside("/System/Volumes/Data/.fseventsd")),
                       refused("/System/Volumes/Database/x", inside("/System")),
                       refused("/.vol/16777220/2", inside("/.vol")),
                       refused("/var/folders/zz/bob/T/x", inside("/var")),
                       place("/var/folders/zz/ann/T", "/var/folders/zz/ann/T"),
                       allowed("/var/folders/zz/ann/T/scratch"),
                       place("/Volumes", "/Volumes"),
                       refused("/Volumes/Disk", disk("/Volumes/Disk")),
                       allowed("/Volumes/Disk/work"),
                       place("/Volumes/Disk/Users", "/Volumes/Disk/Users"),
                       refused("/Volumes/Disk/home/ann/x", otherHome),
                       refused("/Volumes/.timemachine/x/y", inside("/Volumes/.timemachine")),
                       refused("/Volumes/Disk/.Spotlight-V100/x", inside("/Volumes/Disk/.Spotlight-V100")),
                       place("/Users", "/Users"),
                       refused("/Users/bob", otherHome),
                       refused("/users/BOB/Library/Caches/x", otherHome),
                       place("/Users/Shared", "/Users/Shared"),
                       place("/Users/Shared/Games", "/Users/Shared/Games"),
                       allowed("/Users/Shared/Games/cache"),
                   });
}

TEST(PathGuardsTest, refusesThePlacesOfTheHome) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    const std::string apps = "~/Library/Containers/com.example.app";
    expectRefusals(
        guards,
        {
            place("/Users/ann", "~"),
            place("/Users/ann/Library", "~/Library"),
            allowed("/Users/ann/Library/Caches"),
            allowed("/Users/ann/Library/Caches/x"),
            allowed("/Users/ann/Downloads"),
            refused("/Users/ann/Library/Mail", inside("~/Library/Mail")),
            refused("/Users/ann/Library/Mail/V10/x", inside("~/Library/Mail")),
            refused("/System/Volumes/Data/Users/ann/Library/Messages", inside("~/Library/Messages")),
            refused("/USERS/Ann/library//x/../messages/.", inside("~/Library/Messages")),
            refused("/Users/ann/.ssh/id", inside("~/.ssh")),
            place("/Users/ann/Pictures", "~/Pictures"),
            allowed("/Users/ann/Pictures/Screenshots"),
            refused("/Users/ann/Music/Music/x", inside("~/Music/Music")),
            {"/Users/ann/Documents", whole("~/Documents"), inside("~/Documents")},
            refused("/Users/ann/Documents/work", inside("~/Documents")),
            refused("/Users/ann/Dropbox/x", inside("~/Dropbox")),
            refused("/Users/ann/Library/CloudStorage/Drive/x", inside("~/Library/CloudStorage")),
            place("/Users/ann/Library/Application Support/App", "~/Library/Application Support/App"),
            allowed("/Users/ann/Library/Application Support/App/Cache"),
            refused("/Users/ann/Library/Application Support/MobileSync/x",
                    inside("~/Library/Application Support/MobileSync")),
            {"/Users/ann/Library/Developer/CoreSimulator", whole("~/Library/Developer/CoreSimulator"),
             holds("~/Library/Developer/CoreSimulator", "~/Library/Developer/CoreSimulator/Devices")},
            allowed("/Users/ann/Library/Developer/CoreSimulator/Caches"),
            place("/Users/ann/Library/Containers/com.example.app", apps),
            place("/Users/ann/Library/Containers/com.example.app/Data", apps + "/Data"),
            refused("/Users/ann/Library/Containers/com.example.app/Data/Documents/x", inside(apps + "/Data/Documents")),
            allowed("/Users/ann/Library/Containers/com.example.app/Data/Library/Caches/x"),
            refused("/Users/ann/Library/Group Containers/group.com.apple.notes/Accounts",
                    inside("~/Library/Group Containers/group.com.apple.notes")),
            refused("/Users/ann/Library/Containers/com.apple.podcasts/Data/x", mediaStore),
            refused("/Users/ann/Library/Caches/com.apple.iTunesCloud", mediaStore),
            refused("/Users/ann/Library/Group Containers/243LU875E5.groups.com.apple.podcasts/x", mediaStore),
            refused("/Users/ann/Library/Application Support/Music/x", mediaStore),
            allowed("/Users/ann/Downloads/com.apple.podcasts"),
            refused("/Users/ann/Downloads/Old.PhotosLibrary/x", libraryFile),
            refused("/Users/ann/Downloads/Installer.dmg", libraryFile),
            allowed("/Users/ann/Library/Caches/Homebrew/tool.dmg"),
            refused("/Users/ann/Library/Caches/x.sparsebundle", libraryFile),
            refused("/Users/ann/src/build.keychain-db", inside("~/src/build.keychain-db")),
            refused("/Users/ann/Documents/x.photoslibrary", libraryFile),
            allowed("/Users/ann/Downloads/.dmg"),
            allowed("/Users/ann/Downloads/photoslibrary"),
        });
}

TEST(PathGuardsTest, refusesThePlacesOfLinux) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/home/ann", SystemKind::linux));
    expectRefusals(guards, {
                               refused("/etc/x", inside("/etc")),
                               refused("/var/cache/x", inside("/var")),
                               refused("/proc/self/root/home/ann/x", inside("/proc")),
                               place("/tmp", "/tmp"),
                               allowed("/tmp/x"),
                               refused("/home/bob/x", otherHome),
                               refused("/root/.cache", otherHome),
                               refused("/run/user/501", inside("/run")),
                               place("/run/media", "/run/media"),
                               place("/run/media/ann", "/run/media/ann"),
                               allowed("/run/media/ann/Disk/work"),
                               refused("/run/media/ann/Disk/home/ann/x", otherHome),
                               refused("/media/Disk/Users/ann", otherHome),
                               refused("/media/ann/Disk/home/ann", otherHome),
                               allowed("/media/ann/Disk/work"),
                               refused("/mnt/disk", disk("/mnt/disk")),
                               refused("/home/ann/.config/Code/Cache", inside("~/.config")),
                               place("/home/ann/.cache", "~/.cache"),
                               allowed("/home/ann/.cache/pip"),
                               place("/home/ann/.local/share", "~/.local/share"),
                               place("/home/ann/.local/share/Trash", "~/.local/share/Trash"),
                               allowed("/home/ann/.local/share/Trash/files"),
                               refused("/home/ann/.local/share/keyrings/x", inside("~/.local/share/keyrings")),
                               refused("/home/ann/.var/app/x/cache", inside("~/.var")),
                               place("/home/ann/Videos", "~/Videos"),
                           });
}

TEST(PathGuardsTest, leavesALinuxPlaceAloneOnLinuxOnly) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    expectRefusals(guards, {allowed("/srv/x"), allowed("/Users/ann/.cache"), allowed("/Users/ann/.local/share/x")});
}

TEST(PathGuardsTest, opensWhatThePresetsClean) {
    const std::map<SystemKind, std::pair<std::string, std::vector<std::string>>> homes{
        {SystemKind::macOS,
         {"/Users/ann",
          {"Library/Developer/Xcode/DerivedData",
           "Library/Developer/Xcode/iOS DeviceSupport",
           "Library/Developer/Xcode/watchOS DeviceSupport",
           "Library/Developer/Xcode/tvOS DeviceSupport",
           "Library/Developer/Xcode/visionOS DeviceSupport",
           "Library/Developer/Xcode/Archives",
           "Library/Caches/org.swift.swiftpm",
           "Library/Caches/CocoaPods",
           "Library/Caches/org.carthage.CarthageKit",
           ".npm/_cacache",
           "Library/Caches/Yarn",
           "Library/Caches/pnpm",
           "Library/Caches/pip",
           ".cache/uv",
           "Library/Caches/Homebrew",
           ".cargo/registry/cache",
           "Library/Caches/go-build",
           ".gradle/caches",
           "Library/Caches/ms-playwright",
           ".cache/puppeteer",
           "Library/Caches/JetBrains",
           "Library/Application Support/Code/Cache",
           "Library/Application Support/Code/CachedData",
           "Library/Application Support/Code/Code Cache",
           "Library/Application Support/Code/GPUCache",
           "Library/Caches/com.microsoft.VSCode.ShipIt",
           "Library/Caches/Google/Chrome",
           "Library/Caches/Microsoft Edge",
           "Library/Caches/Firefox",
           "Library/Caches/BraveSoftware/Brave-Browser",
           "Library/Caches/com.anthropic.claudefordesktop.ShipIt",
           "Library/Application Support/Claude/Cache",
           "Library/Application Support/Claude/Code Cache",
           "Library/Application Support/Claude/GPUCache",
           "Library/Application Support/Google/GoogleUpdater/crx_cache",
           "Library/Caches/ollama",
           "Library/Caches/us.zoom.xos",
           "Library/Logs",
           "Downloads",
           ".Trash"}}},
        {SystemKind::linux,
         {"/home/ann",
          {".cache/pip", ".cache/uv", ".cache/go-build", ".cache/yarn", ".cache/pnpm", ".cache/ms-playwright",
           ".cache/JetBrains", ".cache/google-chrome", ".cache/mozilla/firefox", ".cache/BraveSoftware",
           ".npm/_cacache", ".cargo/registry/cache", ".gradle/caches", ".local/share/Trash/files", "Downloads"}}}};
    for (const auto& [kind, table] : homes) {
        FakeSystem system;
        const PathGuards guards(system.surroundings(table.first, kind));
        for (const auto& folder : table.second) {
            const auto root = std::filesystem::path(table.first) / folder;
            EXPECT_EQ(guards.refusalForRoot(root), std::nullopt) << root;
            const auto walk = guards.walkRoot(root);
            for (const auto* item : {"a", "v1.2/b.bin", "2024-01-31/App.xcarchive"}) {
                EXPECT_EQ(guards.refusalForItem(root / item), std::nullopt) << root << item;
                EXPECT_EQ(guards.refusalForWalkedItem(walk, item), std::nullopt) << root << item;
            }
        }
    }
}

TEST(PathGuardsTest, comparesNamesAsTheDiskDoes) {
    FakeSystem system;
    auto surroundings = system.surroundings("/Users/\u00C9va", SystemKind::macOS);
    const PathGuards guards(surroundings);
    expectRefusals(guards, {refused("/Users/E\u0301VA/LIBRARY/MAIL/x", inside("~/Library/Mail")),
                            refused("/Users/Eva/x", otherHome), refused("/\u017Fystem/x", inside("/System")),
                            refused("/Users/\u00C9va/a.PHOTO\u017FLIBRARY", libraryFile)});
}

TEST(PathGuardsTest, refusesWhatItCannotCheck) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    expectRefusals(guards, {refused("", unreadable("an empty path")), refused("x/y", unreadable("x/y")),
                            refused("~/Downloads", unreadable("~/Downloads")),
                            refused(std::string("/a\0b", 4), unreadable("/a\uFFFDb"))});

    system.resolveError = EACCES;
    EXPECT_EQ(guards.refusalForRoot("/data/x"), unreadable("/data/x"));
    EXPECT_EQ(guards.refusalForItem("/data/x"), unreadable("/data/x"));
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/data/x"), "y"), unreadable("/data/x/y"));
    system.resolveError = ENOENT;
    EXPECT_EQ(guards.refusalForRoot("/data/x"), unreadable("/data/x"));

    FakeSystem homeless;
    const PathGuards without(homeless.surroundings("", SystemKind::macOS));
    EXPECT_EQ(without.refusalForRoot("/data/x"), unreadable("/data/x"));
}

TEST(PathGuardsTest, followsTheLinksOfPlacesAndOfPaths) {
    FakeSystem system;
    system.links = {
        {"/home/ann/Documents", "/data/docs"}, {"/home/ann/link", "/home/ann/.ssh"}, {"/shop", "/usr/shop"}};
    const PathGuards guards(system.surroundings("/home/ann", SystemKind::linux));
    EXPECT_EQ(guards.refusalForRoot("/data/docs/x"), inside("~/Documents"));
    EXPECT_EQ(guards.refusalForRoot("/data"), whole("/data"));
    EXPECT_EQ(guards.refusalForItem("/data"), holds("/data", "~/Documents"));
    EXPECT_EQ(guards.refusalForRoot("/home/ann/link"), inside("~/.ssh"));
    EXPECT_EQ(guards.refusalForItem("/home/ann/link"), std::nullopt) << "only the link would go";
    EXPECT_EQ(guards.refusalForItem("/home/ann/link/id"), inside("~/.ssh"));
    EXPECT_EQ(guards.refusalForRoot("/shop/x"), inside("/usr"));
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/shop"), "x"), inside("/usr"));
}

TEST(PathGuardsTest, keepsAHomeInsideASystemFolderOpen) {
    FakeSystem system;
    system.links = {{"/home", "/var/home"}};
    const PathGuards service(system.surroundings("/var/lib/backup", SystemKind::linux));
    const PathGuards moved(system.surroundings("/home/ann", SystemKind::linux));
    const PathGuards daemon(system.surroundings("/usr", SystemKind::linux));
    expectRefusals(service, {place("/var/lib/backup", "~"),
                             allowed("/var/lib/backup/x"),
                             refused("/var/lib/backup/.ssh/x", inside("~/.ssh")),
                             {"/var/lib", inside("/var"), inside("/var")}});
    expectRefusals(moved, {allowed("/home/ann/x"), allowed("/var/home/ann/x"), refused("/var/home/bob/x", otherHome)});
    FakeSystem linked;
    linked.links = {{"/home", "/srv/people"}, {"/home/ann/Desktop", "/srv/people/ann"}};
    const PathGuards elsewhere(linked.surroundings("/home/ann", SystemKind::linux));
    expectRefusals(elsewhere, {allowed("/srv/people/ann/x"), refused("/srv/people/bob/x", otherHome),
                               refused("/home/ann/Desktop/x", inside("~/Desktop"))});
    expectRefusals(daemon, {refused("/usr/share", inside("/usr"))});
}

TEST(PathGuardsTest, protectsTheAccountsHomeWhileAnotherIsActedIn) {
    FakeSystem system;
    auto surroundings = system.surroundings("/home/ann/sandbox", SystemKind::linux);
    surroundings.accountHome = "/home/ann";
    const PathGuards inHome(surroundings);
    expectRefusals(inHome, {allowed("/home/ann/sandbox/.cache/x"), place("/home/ann/sandbox", "~"),
                            refused("/home/ann/sandbox/Documents/x", inside("~/Documents")),
                            refused("/home/ann/.cache/pip", inside("/home/ann")),
                            refused("/home/ann/Downloads", inside("/home/ann")), refused("/home/bob/x", otherHome)});

    surroundings.home = "/home/ann/Documents/sandbox";
    expectRefusals(PathGuards(surroundings), {refused("/home/ann/Documents/sandbox/x", inside("/home/ann/Documents"))});
    surroundings.home = "/usr/sandbox";
    expectRefusals(PathGuards(surroundings), {refused("/usr/sandbox/x", inside("/usr"))});
    surroundings.home = "/home/bob";
    expectRefusals(PathGuards(surroundings), {refused("/home/bob/x", otherHome)});
    surroundings.home = "/tmp/demo/home";
    expectRefusals(PathGuards(surroundings), {allowed("/tmp/demo/home/x"),
                                              refused("/home/ann/x", inside("/home/ann")),
                                              {"/tmp/demo", whole("/tmp/demo"), holds("/tmp/demo", "~")}});
}

TEST(PathGuardsTest, opensTheTemporaryFolderOnlyWhereItIsTheUsersOwn) {
    FakeSystem system;
    system.owners = {{"/var/tmp", 501}, {"/var/tmp/ann", 501}, {"/var/tmp/bob", 502}, {"/var/lib/ann", 501}};
    auto surroundings = system.surroundings("/home/ann", SystemKind::linux);
    for (const auto* folder : {"/var/tmp", "/var/tmp/bob", "/var/tmp/none", "/var/lib/ann", "/var", "tmp"}) {
        surroundings.temporaryFolder = folder;
        const PathGuards guards(surroundings);
        EXPECT_EQ(guards.refusalForRoot(std::string(folder) == "tmp" ? "/var/x" : std::string(folder) + "/x"),
                  inside("/var"))
            << folder;
    }
    surroundings.temporaryFolder = "/var/tmp/ann";
    expectRefusals(PathGuards(surroundings), {allowed("/var/tmp/ann/x"), place("/var/tmp/ann", "/var/tmp/ann")});

    FakeSystem mac;
    mac.links = {{"/var", "/private/var"}};
    mac.owners = {{"/private/var/folders/zz/ann/T", 501}};
    expectRefusals(PathGuards(mac.surroundings("/Users/ann", SystemKind::macOS)),
                   {allowed("/var/folders/zz/ann/T/x"), allowed("/private/var/folders/zz/ann/T/x"),
                    refused("/private/var/folders/zz/ann/C", inside("/var"))});
}

TEST(PathGuardsTest, protectsTheFoldersThatTheDesktopNames) {
    FakeSystem system;
    auto surroundings = system.surroundings("/home/ann", SystemKind::linux);
    surroundings.userFolders = {{UserFolder::Part::documents, "/home/ann/Dokumente"},
                                {UserFolder::Part::pictures, "/data/Bilder"},
                                {UserFolder::Part::desktop, "/home/ann/"}};
    const PathGuards guards(surroundings);
    expectRefusals(guards, {refused("/home/ann/Dokumente/x", inside("~/Dokumente")),
                            place("/data/Bilder", "/data/Bilder"), allowed("/home/ann/x")});
    EXPECT_THAT(guards.exceptionFor("/home/ann/Dokumente/x"),
                Optional(GuardException{GuardException::Tree::documents, "/home/ann/Dokumente/x", "~/Dokumente"}));
}

TEST(PathGuardsTest, asksTheSystemOnlyWhatTheTextLeavesOpen) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    const auto walk = guards.walkRoot("/Users/ann/Downloads");
    system.asked.clear();

    EXPECT_TRUE(guards.refusalForRoot("/Users/ann/Library/Mail/x"));
    EXPECT_TRUE(guards.refusalForItem("/Users/ann/Documents/x"));
    EXPECT_TRUE(guards.refusalForWalkedItem(walk, "a/b", "c.iso"));
    EXPECT_FALSE(guards.refusalForWalkedItem(walk, "a/b", "c.txt"));
    EXPECT_THAT(system.asked, IsEmpty());

    EXPECT_FALSE(guards.refusalForVerifiedItem("/Users/ann/Downloads/a"));
    EXPECT_THAT(system.asked, ElementsAre("cloud /Users/ann/Downloads/a"));
}

TEST(PathGuardsTest, refusesMountPointsAndWhatACloudKeeps) {
    FakeSystem system;
    system.mounts = {"/data/disk", "/home/ann/src/bound"};
    system.inCloud = {"/home/ann/kept", "/home/ann/src/file"};
    const PathGuards guards(system.surroundings("/home/ann", SystemKind::linux));
    EXPECT_EQ(guards.refusalForRoot("/data/disk"), disk("/data/disk"));
    EXPECT_EQ(guards.refusalForItem("/home/ann/src/bound"), disk("~/src/bound"));
    EXPECT_EQ(guards.refusalForRoot("/home/ann/kept"), cloudRoot);
    const std::string item = "Vostrel never removes items stored in iCloud (~/src/file).";
    EXPECT_EQ(guards.refusalForItem("/home/ann/src/file"), item);
    EXPECT_EQ(guards.refusalForVerifiedItem("/home/ann/src/file"), item);
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/home/ann/kept"), "a/b"),
              "Vostrel never removes items stored in iCloud (~/kept/a/b).");
}

TEST(PathGuardsTest, letsARuleNameAFolderInsideDocuments) {
    FakeSystem system;
    system.links = {{"/Users/ann/Documents/link", "/Users/ann/Documents/other"},
                    {"/Users/ann/away", "/data/x"},
                    {"/Users/ann/in", "/Users/ann/Documents/old"}};
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    const std::string refusal = inside("~/Documents");
    const auto exception = guards.exceptionFor("/Users/ann/Documents/old/");
    ASSERT_THAT(exception,
                Optional(GuardException{GuardException::Tree::documents, "/Users/ann/Documents/old", "~/Documents"}));

    EXPECT_EQ(guards.refusalForRoot("/Users/ann/Documents/old", exception), std::nullopt);
    EXPECT_EQ(guards.refusalForItem("/Users/ann/Documents/old/a", exception), std::nullopt);
    EXPECT_EQ(guards.refusalForVerifiedItem("/Users/ann/Documents/OLD/a/b", exception), std::nullopt);
    const auto walk = guards.walkRoot("/Users/ann/Documents/old", exception);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "a/b"), std::nullopt);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "a/b.iso"), libraryFile);

    EXPECT_EQ(guards.refusalForItem("/Users/ann/Documents/old", exception), refusal);
    EXPECT_EQ(guards.refusalForItem("/Users/ann/Documents/older", exception), refusal);
    EXPECT_EQ(guards.refusalForRoot("/Users/ann/Documents/other", exception), refusal);
    EXPECT_EQ(guards.refusalForRoot("/Users/ann/Documents", exception), whole("~/Documents"));
    EXPECT_EQ(guards.refusalForItem("/Users/ann/Desktop/old/a", exception), inside("~/Desktop"));
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/Users/ann/Documents/old"), "a"), refusal);

    for (const auto* folder : {"/Users/ann/Documents", "/Users/ann/Desktop", "/Users/ann/Downloads/x", "Documents/x",
                               "/Users/ann/Documents/link", "/Users/ann/away", "/Users/ann/in",
                               "/Users/bob/Documents/x", "/Users/ann/Documents/../Downloads"}) {
        EXPECT_EQ(guards.exceptionFor(folder), std::nullopt) << folder;
    }
}

TEST(PathGuardsTest, opensOnlyScreenshotsWhereTheyAreSavedToTheDesktopItself) {
    FakeSystem system;
    const PathGuards guards(system.surroundings("/Users/ann", SystemKind::macOS));
    const auto exception = guards.screenshotException("/Users/ann/Desktop");
    const std::string shot = "Screenshot 2024-01-31 at 9.05.07 PM.png";
    const auto walk = guards.walkRoot("/Users/ann/Desktop", exception);

    EXPECT_EQ(guards.refusalForRoot("/Users/ann/Desktop", exception), std::nullopt);
    EXPECT_EQ(guards.refusalForItem("/Users/ann/Desktop/" + shot, exception), std::nullopt);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, shot), std::nullopt);
    for (const std::string& other : {std::string("thesis.png"), "folder/" + shot}) {
        EXPECT_EQ(guards.refusalForItem("/Users/ann/Desktop/" + other, exception), inside("~/Desktop")) << other;
        EXPECT_NE(guards.refusalForWalkedItem(walk, other), std::nullopt) << other;
    }
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "folder/" + shot),
              "Screenshots are cleaned only directly inside the screenshot folder.");
    EXPECT_EQ(guards.refusalForRoot("/Users/ann/Desktop/folder", exception), inside("~/Desktop"));
    EXPECT_EQ(guards.screenshotException("/Users/ann/Pictures"), std::nullopt);
    EXPECT_EQ(guards.screenshotException("/Users/ann/Desktop/Shots"), guards.exceptionFor("/Users/ann/Desktop/Shots"));
}

TEST(PathGuardsTest, showsTheHomeAsATilde) {
    FakeSystem system;
    system.links = {{"/home/ann", "/data/ann"}};
    const PathGuards guards(system.surroundings("/home/ann", SystemKind::linux));
    EXPECT_EQ(guards.displayPath("/home/ann"), "~");
    EXPECT_EQ(guards.displayPath("/home/ann/a b/"), "~/a b");
    EXPECT_EQ(guards.displayPath("/data/ann/x"), "~/x");
    EXPECT_EQ(guards.displayPath("/home/anna/x"), "/home/anna/x");
}

TEST(PathGuardsTest, recognisesAPlaceOnlyWhileItIsTheSameFolder) {
    FakeSystem system;
    auto surroundings = system.surroundings("/home/ann", SystemKind::linux);
    std::map<std::string, std::uint64_t> inodes{{"/home/ann/.kube", 7}, {"/home/ann/.ssh", 8}};
    surroundings.examine = [&](const std::filesystem::path& path) -> std::optional<GuardSurroundings::FileOwner> {
        const auto inode = inodes.find(path.native());
        if (inode == inodes.end()) return std::nullopt;
        return GuardSurroundings::FileOwner{{1, inode->second}, 501};
    };
    const PathGuards guards(surroundings);
    inodes = {{"/home/ann/.ssh", 8}, {"/home/ann/src", 7}, {"/data/alias", 8}};
    EXPECT_EQ(guards.refusalForRoot("/home/ann/src/x"), std::nullopt);
    EXPECT_EQ(guards.refusalForRoot("/data/alias/x"), inside("~/.ssh"));
}

class PathGuardsOnDiskTest : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::filesystem::path home = folder.makeFolder("home");
};

TEST_F(PathGuardsOnDiskTest, protectsWhatALinkedPlaceLeadsTo) {
    const auto data = folder.makeFolder("data/docs/work").parent_path();
    folder.makeLink("home/Documents", data);
    folder.makeFolder("home/src");
    folder.makeLink("home/src/inside", data / "work");
    const PathGuards guards(home, {});
    EXPECT_EQ(guards.refusalForRoot(data / "work"), inside("~/Documents"));
    EXPECT_EQ(guards.refusalForRoot(home / "src/inside"), inside("~/Documents"));
    EXPECT_EQ(guards.refusalForRoot(home / "src/inside/not yet"), inside("~/Documents"));
    EXPECT_EQ(guards.refusalForItem(home / "src/inside/x"), inside("~/Documents"));
    EXPECT_EQ(guards.refusalForRoot(home / "src"), std::nullopt);
    EXPECT_EQ(guards.refusalForRoot(home / "src/missing"), std::nullopt);
    EXPECT_THAT(guards.exceptionFor(data / "work"),
                Optional(GuardException{GuardException::Tree::documents, data / "work", "~/Documents"}));
}

TEST_F(PathGuardsOnDiskTest, recognisesAPlaceMountedASecondTime) {
    const auto keys = folder.makeFolder("home/.ssh");
    folder.makeFolder("home/.ssh/old/keys");
    const auto alias = folder.makeFolder("home/src/alias");
    const PathGuards guards(home, {});
    EXPECT_EQ(guards.refusalForRoot(alias), std::nullopt);
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount((keys / "old").c_str(), alias.c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_EQ(guards.refusalForRoot(alias / "keys"), inside("~/.ssh"));
        EXPECT_EQ(guards.refusalForItem(alias / "keys/mine"), inside("~/.ssh"));
        EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot(alias), "keys"), inside("~/.ssh"));
        ASSERT_EQ(::mount(keys.c_str(), alias.c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_EQ(guards.refusalForRoot(alias), inside("~/.ssh"));
        EXPECT_EQ(guards.refusalForRoot(alias / "old/keys"), inside("~/.ssh"));
        EXPECT_EQ(guards.refusalForItem(alias), disk("~/src/alias"));
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
