#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <sstream>

#include "filesystem/PathGuards.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using testing::Optional;

constexpr auto mayGo = "";
constexpr auto disk = "Vostrel never removes a whole disk ({place}).";
constexpr auto inside = "Vostrel never cleans inside {place}, because it holds your documents, settings or the system.";
constexpr auto whole = "Vostrel will not clean {path} as a whole. Choose a folder inside it.";
constexpr auto holds = "Vostrel never removes {path}, because that would remove {place}.";
constexpr auto unreadable = "Vostrel could not check {place}, so it leaves it alone.";
constexpr auto inCloud = "Vostrel never cleans folders stored in iCloud.";
constexpr auto itemInCloud = "Vostrel never removes items stored in iCloud ({place}).";
constexpr auto otherHome = "Vostrel never cleans inside another user's home folder, or a home folder on another disk.";
constexpr auto mediaStore = "Vostrel never cleans the stores of Apple's Music, TV and Podcasts apps.";
constexpr auto libraryFile = "Vostrel never cleans photo, music or video libraries, disk images or backups.";
constexpr auto belowScreenshots = "Screenshots are cleaned only directly inside the screenshot folder.";

/// A sentence of a path and of the place that it is, holds or lies in.
std::string said(const char* sentence, const std::string& place, const std::string& path = {}) {
    return fmt::format(fmt::runtime(sentence), fmt::arg("place", place), fmt::arg("path", path));
}

using FileOwner = GuardSurroundings::FileOwner;

FileOwner file(std::uint64_t inode, std::uint32_t owner = 501) {
    return {{1, inode}, owner};
}

/// A system without a disk: every path exists and leads to itself but for the links listed.
struct FakeSystem {
    std::string home = "/Users/ann";
    std::map<std::string, std::string> links = {};
    std::string accountHome = home;
    std::string temporaryFolder = home.starts_with("/Users") ? "/var/folders/zz/ann/T" : "/tmp";
    std::vector<UserFolder> userFolders = {};
    std::map<std::string, FileOwner> files = {{"/var/folders/zz/ann/T", file(1)}};
    std::set<std::string> mounts = {};
    std::set<std::string> kept = {};
    int resolveError = 0;

    PathGuards guards() {
        GuardSurroundings around;
        around.home = home;
        around.accountHome = accountHome;
        around.temporaryFolder = temporaryFolder;
        around.userID = 501;
        around.system = home.starts_with("/Users") ? SystemKind::macOS : SystemKind::linux;
        around.packagePrefix = "/opt/packages";
        around.userFolders = userFolders;
        around.resolve = [this](const std::string& path) -> std::expected<std::filesystem::path, int> {
            if (path.ends_with("/not yet")) return std::unexpected(ENOENT);
            if (resolveError != 0) return std::unexpected(resolveError);
            return reached(path);
        };
        around.examine = [this](const std::string& path) {
            const auto found = files.find(reached(path));
            return found == files.end() ? std::nullopt : std::optional(found->second);
        };
        around.isMountPoint = [this](const std::string& path) { return mounts.contains(path); };
        around.isInICloud = [this](const std::string& path) { return kept.contains(path); };
        around.isDatalessPath = [](const auto&) { return false; };
        return PathGuards(around);
    }

private:
    std::string reached(const std::string& path) const {
        for (const auto& [link, target] : links) {
            if (path == link || path.starts_with(link + "/")) return target + path.substr(link.size());
        }
        return path;
    }
};

/// What is said of some paths, asked for as roots and as items.
struct Verdict {
    /// "place|/path below", "path = place" or a place itself, with commas between them; "~" stands for the home.
    const char* rows;
    const char* asRoot;
    const char* asItem = asRoot;
};

std::vector<std::pair<std::string, std::string>> pathsAndPlaces(const std::string& rows) {
    std::vector<std::pair<std::string, std::string>> found;
    std::istringstream text(rows);
    for (std::string row; std::getline(text >> std::ws, row, ',');) {
        const auto equals = row.find(" = ");
        const auto placeEnd = std::min(row.find('|'), row.size());
        const auto place = equals == std::string::npos ? row.substr(0, placeEnd) : row.substr(equals + 3);
        row.erase(std::min(equals, row.size()));
        std::erase(row, '|');
        found.emplace_back(row, place);
    }
    return found;
}

struct Asking {
    std::optional<GuardException> exception = {};
    /// Where links and mounts decide, only those who ask for a root or an unknown item are told.
    bool textTells = true;
};

/// Every way of asking must agree: an item whatever is known of it, and walks from its folder and from far above.
void expectVerdicts(const PathGuards& guards, const std::vector<Verdict>& verdicts, const Asking& asking = {}) {
    const auto& [exception, textTells] = asking;
    const auto top = guards.walkRoot("/");
    for (const auto& [rows, asRoot, asItem] : verdicts) {
        for (const auto& [shown, place] : pathsAndPlaces(rows)) {
            SCOPED_TRACE(shown);
            const std::filesystem::path path = shown[0] == '~' ? guards.home().native() + shown.substr(1) : shown;
            const std::string expected = said(asItem, place, shown);
            EXPECT_EQ(guards.refusalForRoot(path, exception).value_or(""), said(asRoot, place, shown));
            EXPECT_EQ(guards.refusalForItem(path, exception).value_or(""), expected);
            if (!textTells) continue;
            EXPECT_EQ(guards.refusalForVerifiedItem(path, exception).value_or(""), expected);
            const auto onDataVolume = "/System/Volumes/Data" + path.native();
            EXPECT_EQ(guards.refusalForItem(onDataVolume, exception).has_value(), !expected.empty());
            if (exception || path == "/" || path != path.lexically_normal()) continue;
            EXPECT_EQ(guards.refusalForWalkedItem(top, path.native().substr(1)).value_or(""), expected);
            if (guards.refusalForItem(path.parent_path())) continue;  // no walk gets so far
            const auto walk = guards.walkRoot(path.parent_path());
            EXPECT_EQ(guards.refusalForWalkedItem(walk, path.filename().native()).value_or(""), expected);
        }
    }
}

void expectVerdicts(FakeSystem system, const std::vector<Verdict>& verdicts) {
    expectVerdicts(system.guards(), verdicts);
}

TEST(PathGuardsTest, refusesThePlacesOfTheSystemAndOfOthers) {
    expectVerdicts(
        FakeSystem{},
        {{"/, /System/Volumes/Data = /, /Volumes/Disk", disk},
         {R"(/System, /System|/Volumes/Database/x, /Library|/Caches/x, /Applications, /bin, /usr|/local/bin, /etc,
             /usr/local/Homebrew|/x, /opt/packages, /opt/homebrew, /private, /dev, /.vol|/16777220/2, /.nofollow,
             /.resolve, /var|/folders/zz/bob/T/x, /System/Volumes/Data/.fseventsd, /Volumes/.timemachine|/x/y,
             /Volumes/Disk/.Spotlight-V100)",
          inside},
         {R"(/opt = /opt/homebrew, /var/folders/zz/ann/T, /Volumes, /Volumes/Disk/Users, /Users, /Users/Shared,
             /Users/Shared/Games)",
          whole, holds},
         {"/Users/bob, /users/BOB/Library/Caches/x, /Volumes/Disk/home/ann/x", otherHome},
         {R"(/opt/tool, /libraries, /var/folders/zz/ann/T/scratch, /Volumes/Disk/work, /Users/Shared/Games/cache,
             /srv/x)",
          mayGo}});
}

TEST(PathGuardsTest, refusesThePlacesOfTheHome) {
    expectVerdicts(
        FakeSystem{},
        {{"~/Documents, ~/Desktop", whole, inside},
         {R"(~/Documents|/work, ~/Desktop|/x, ~/Pictures/Photo Booth Library, ~/Movies/TV, ~/Music/Music,
             ~/Music/iTunes, ~/Applications, ~/Dropbox, ~/Google Drive, ~/OneDrive, ~/Nextcloud,
             ~/Library/Mobile Documents, ~/Library/CloudStorage|/Drive/x, ~/.ssh|/id, ~/.gnupg, ~/.aws, ~/.kube,
             ~/.password-store, ~/.config, ~/.azure, ~/Library/Keychains, ~/Library/Preferences, ~/Library/Accounts,
             ~/Library/Mail, ~/Library/Mail|/V10/x, ~/Library/Messages, ~/Library/Calendars, ~/Library/Contacts,
             ~/Library/Reminders, ~/Library/Safari, ~/Library/Cookies, ~/Library/Photos, ~/Library/Stickies,
             ~/Library/Shortcuts, ~/Library/HomeKit, ~/Library/Passes, ~/Library/Finance,
             ~/Library/Autosave Information, ~/Library/Thunderbird, ~/Library/Fonts, ~/Library/Services,
             ~/Library/LaunchAgents, ~/Library/MobileDevice, ~/Library/Developer/CoreSimulator/Devices,
             ~/Library/Developer/Xcode/UserData, ~/Library/Application Support/MobileSync,
             ~/Library/Application Support/AddressBook, ~/Library/Application Support/CallHistoryDB,
             ~/Library/Application Support/Google/Chrome, ~/Library/Application Support/Firefox,
             ~/Library/Application Support/Code/User, ~/Library/Group Containers/group.com.apple.notes|/Accounts,
             ~/Library/Containers/com.example.app/Data/Documents|/x, ~/src/build.keychain-db, ~/src/my.kdbx,
             /System/Volumes/Data/Users/ann/Library/Messages = ~/Library/Messages,
             /USERS/Ann/library//x/../messages/. = ~/Library/Messages)",
          inside},
         {R"(~, ~/Library, ~/Pictures, ~/Movies, ~/Music, ~/Library/Application Support,
             ~/Library/Containers/com.example.app, ~/Library/Application Support/App,
             ~/Library/Containers/com.example.app/Data,
             ~/Library/Developer/CoreSimulator = ~/Library/Developer/CoreSimulator/Devices)",
          whole, holds},
         {R"(~/Library/Containers/com.apple.podcasts/Data/x, ~/Library/Caches/com.apple.iTunesCloud, ~/Library/iTunes/x,
             ~/Library/Group Containers/243LU875E5.groups.com.apple.podcasts/x,
             ~/Library/Application Support/Music/x.photoslibrary)",
          mediaStore},
         {R"(~/Downloads/Old.PhotosLibrary/x, ~/Downloads/Installer.dmg, ~/Library/Caches/x.sparsebundle, ~/a.logicx,
             ~/a.imovielibrary, ~/a.tmbackup, ~/a.qcow2, ~/Documents/x.photoslibrary)",
          libraryFile},
         {R"(~/Downloads, ~/Downloads/com.apple.podcasts, ~/Downloads/.dmg, ~/Downloads/photoslibrary,
             ~/Pictures/Screenshots, ~/.cache, ~/Library/Caches, ~/Library/Caches/x, ~/Library/Caches/Homebrew/tool.dmg,
             ~/Library/Developer/CoreSimulator/Caches, ~/Library/Application Support/App/Cache,
             ~/Library/Containers/com.example.app/Data/Library/Caches/x,
             ~/Library/Developer/Xcode/Archives/2024-01-31/App.xcarchive, ~/.local/share/x)",
          mayGo}});
}

TEST(PathGuardsTest, refusesThePlacesOfLinux) {
    expectVerdicts(
        FakeSystem{.home = "/home/ann"},
        {{"/mnt/disk", disk},
         {R"(/etc, /boot, /lib, /var|/cache/x, /proc|/self/root/home/ann/x, /sys, /run|/user/501, /opt, /srv, /snap,
             /nix, ~/.config|/Code/Cache, ~/.local/bin, ~/.local/lib, ~/.local/share/keyrings, ~/.local/share/evolution,
             ~/.local/share/kwalletd, ~/.mozilla, ~/.thunderbird, ~/.pki, ~/.fonts, ~/.var|/app/x/cache, ~/snap)",
          inside},
         {R"(/tmp, /run/media, /run/media/ann, /media, ~/.cache, ~/.local, ~/.local/share, ~/.local/share/Trash,
             ~/Videos, ~/Public)",
          whole, holds},
         {R"(/home/bob/x, /root/.cache, /var/home/bob/x, /mnt/disk/home/ann/x, /run/media/ann/Disk/home/ann/x,
             /media/Disk/Users/ann, /media/ann/Disk/home/ann)",
          otherHome},
         {R"(/tmp/x, /run/media/ann/Disk/work, /media/ann/Disk/work, ~/.cache/pip, ~/.local/share/Trash/files)",
          mayGo}});
}

TEST(PathGuardsTest, refusesWhatItCannotCheckAndAsksOnlyWhatTheTextLeavesOpen) {
    FakeSystem system;
    const PathGuards guards = system.guards();
    const auto walk = guards.walkRoot("/Users/ann/Downloads");
    const std::pair<std::string, std::string> rows[] = {
        {"", "an empty path"}, {"x/y", "x/y"}, {"~/Downloads", "~/Downloads"}, {{"/a\0b", 4}, "/a\uFFFDb"}};
    for (const auto& [path, shown] : rows) {
        for (const auto& refusal :
             {guards.refusalForRoot(path), guards.refusalForItem(path), guards.refusalForVerifiedItem(path)})
            EXPECT_EQ(refusal, said(unreadable, shown));
    }
    for (const int error : {EACCES, ENOENT}) {
        system.resolveError = error;
        expectVerdicts(guards, {{"/data/x", unreadable}, {"~/Library/Mail|/x", inside}}, {.textTells = false});
        EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/data/x"), "y"), said(unreadable, "/data/x/y"));
        EXPECT_EQ(guards.refusalForWalkedItem(walk, "a/b"), std::nullopt);
        EXPECT_EQ(guards.refusalForVerifiedItem("/Users/ann/Downloads/a"), std::nullopt);
    }
    expectVerdicts(FakeSystem{.home = ""}, {{"/data/x", unreadable}});
}

TEST(PathGuardsTest, followsTheLinksOfPlacesAndOfPaths) {
    FakeSystem system{
        .home = "/home/ann",
        .links = {{"/home/ann/Documents", "/data/docs"}, {"/home/ann/link", "/home/ann/.ssh"}, {"/shop", "/usr/shop"}}};
    const PathGuards guards = system.guards();
    expectVerdicts(guards, {{"/data/docs/x = ~/Documents", inside}, {"/data = ~/Documents", whole, holds}});
    expectVerdicts(guards,
                   {{"~/link = ~/.ssh", inside, mayGo},  // of an item only the link would go
                    {"~/link/id = ~/.ssh, ~/link/not yet = ~/.ssh, /shop/x = /usr", inside}},
                   {.textTells = false});
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/shop"), "x"), said(inside, "/usr"));
}

TEST(PathGuardsTest, showsTheHomeAsATilde) {
    FakeSystem system{.home = "/home/ann", .links = {{"/home/ann", "/data/ann"}}};
    const PathGuards guards = system.guards();
    EXPECT_EQ(guards.displayPath("/home/ann"), "~");
    EXPECT_EQ(guards.displayPath("/data/ann/a b/"), "~/a b");
    EXPECT_EQ(guards.displayPath("/home/anna"), "/home/anna");
}

TEST(PathGuardsTest, knowsHomesByAnySpellingWhereverTheyLie) {
    using enum UserFolder::Part;
    const std::pair<FakeSystem, std::vector<Verdict>> homes[] = {
        {{.home = "/Users/\u00C9va"},
         {{"/Users/E\u0301VA/LIBRARY/MAIL/x = ~/Library/Mail, /\u017Fystem/x = /System", inside},
          {"/Users/Eva/x", otherHome},
          {"~/a.PHOTO\u017FLIBRARY", libraryFile}}},
        {{.home = "/home/ann",
          .userFolders = {{documents, "/home/ann/Dokumente"}, {pictures, "/data/Bilder"}, {desktop, "/home/ann/"}}},
         {{"~/Dokumente|/x", inside}, {"/data/Bilder", whole, holds}, {"~/x", mayGo}}},
        {{.home = "/var/lib/backup"}, {{"~", whole, holds}, {"~/x", mayGo}, {"~/.ssh|/x, /var|/lib", inside}}},
        {{.home = "/usr"}, {{"/usr/share = /usr", inside}}},
        {{.home = "/home/ann", .links = {{"/home", "/var/home"}}},
         {{"~/x, /var/home/ann/x", mayGo}, {"/var/home/bob/x", otherHome}}},
        {{.home = "/home/ann", .links = {{"/home", "/srv/people"}, {"/home/ann/Desktop", "/srv/people/ann"}}},
         {{"/srv/people/ann/x", mayGo}, {"/srv/people/bob/x", otherHome}, {"~/Desktop|/x", inside}}},
        {{.home = "/home/ann/sandbox", .accountHome = "/home/ann"},
         {{"~/.cache/x", mayGo},
          {"~", whole, holds},
          {"~/Documents|/x, /home/ann|/.cache/pip, /home/ann|/Downloads", inside},
          {"/home/bob/x", otherHome}}},
        {{.home = "/home/ann/Documents/sandbox", .accountHome = "/home/ann"}, {{"~/x = /home/ann/Documents", inside}}},
        {{.home = "/usr/sandbox", .accountHome = "/home/ann"}, {{"~/x = /usr", inside}}},
        {{.home = "/home/bob", .accountHome = "/home/ann"}, {{"~/x", otherHome}}},
        {{.home = "/tmp/demo/home", .accountHome = "/home/ann"},
         {{"~/x", mayGo}, {"/home/ann|/x", inside}, {"/tmp/demo = ~", whole, holds}}},
    };
    for (const auto& [system, verdicts] : homes)
        expectVerdicts(system, verdicts);
}

TEST(PathGuardsTest, opensTheTemporaryFolderOnlyWhereItIsTheUsersOwn) {
    const std::map<std::string, FileOwner> files{
        {"/var/tmp", file(1)}, {"/var/tmp/ann", file(2)}, {"/var/tmp/bob", file(3, 502)}, {"/var/lib/ann", file(4)}};
    for (const auto* folder : {"/var/tmp", "/var/tmp/ann", "/var/tmp/bob", "/var/tmp/none", "/var/lib/ann", "tmp"}) {
        const bool isOwn = folder == std::string("/var/tmp/ann");
        expectVerdicts(FakeSystem{.home = "/home/ann", .temporaryFolder = folder, .files = files},
                       {{"/var|/tmp/ann/x", isOwn ? mayGo : inside}, {"/var|/tmp/bob/x, /var|/lib/ann/x", inside}});
    }
    expectVerdicts(
        FakeSystem{.links = {{"/var", "/private/var"}}, .files = {{"/private/var/folders/zz/ann/T", file(1)}}},
        {{"/var/folders/zz/ann/T/x, /private/var/folders/zz/ann/T/x", mayGo},
         {"/private/var/folders/zz/ann/C = /var", inside}});
}

TEST(PathGuardsTest, refusesMountPointsAndWhatACloudKeeps) {
    FakeSystem system{.home = "/home/ann", .mounts = {"/data/disk", "/home/ann/src/bound"}, .kept = {"/home/ann/kept"}};
    const PathGuards guards = system.guards();
    expectVerdicts(guards, {{"/data/disk, ~/src/bound", disk}, {"~/kept", inCloud, itemInCloud}}, {.textTells = false});
    EXPECT_EQ(guards.refusalForVerifiedItem("/home/ann/kept"), said(itemInCloud, "~/kept"));
    EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot("/home/ann/kept"), "a/b"), said(itemInCloud, "~/kept/a/b"));
}

TEST(PathGuardsTest, letsARuleNameAFolderInsideDocuments) {
    FakeSystem system{.links = {{"/Users/ann/Documents/link", "/Users/ann/Documents/other"},
                                {"/Users/ann/away", "/data/x"},
                                {"/Users/ann/in", "/Users/ann/Documents/old"}}};
    const PathGuards guards = system.guards();
    const auto exception = guards.exceptionFor("/Users/ann/Documents/old/");
    ASSERT_THAT(exception,
                Optional(GuardException{GuardException::Tree::documents, "/Users/ann/Documents/old", "~/Documents"}));
    expectVerdicts(guards,
                   {{"~/Documents|/old", mayGo, inside},
                    {"~/Documents/old/a, ~/Documents/OLD/a/b", mayGo},
                    {"~/Documents/old/b.iso", libraryFile},
                    {"~/Documents", whole, inside},
                    {"~/Documents|/older, ~/Documents|/other, ~/Desktop|/old/a", inside}},
                   {.exception = exception});
    const auto walk = guards.walkRoot("/Users/ann/Documents/old", exception);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "a/b"), std::nullopt);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "a/b.iso"), libraryFile);
    for (const auto* folder : {"/Users/ann/Documents", "/Users/ann/Desktop", "/Users/ann/Downloads/x", "Documents/x",
                               "/Users/ann/Documents/link", "/Users/ann/away", "/Users/ann/in",
                               "/Users/bob/Documents/x", "/Users/ann/Documents/../Downloads"}) {
        EXPECT_EQ(guards.exceptionFor(folder), std::nullopt) << folder;
    }
}

TEST(PathGuardsTest, opensOnlyScreenshotsWhereTheyAreSavedToTheDesktopItself) {
    FakeSystem system;
    const PathGuards guards = system.guards();
    const auto exception = guards.screenshotException("/Users/ann/Desktop");
    const std::string shot = "Screenshot 2024-01-31 at 9.05.07 PM.png";
    const std::string tooDeep = "folder/" + shot;
    expectVerdicts(guards,
                   {{"~/Desktop", mayGo, inside},
                    {("~/Desktop|/" + shot).c_str(), inside, mayGo},
                    {("~/Desktop|/thesis.png, ~/Desktop|/folder, ~/Desktop|/" + tooDeep).c_str(), inside}},
                   {.exception = exception});
    const auto walk = guards.walkRoot("/Users/ann/Desktop", exception);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, shot), std::nullopt);
    EXPECT_EQ(guards.refusalForWalkedItem(walk, "thesis.png"), said(inside, "~/Desktop"));
    EXPECT_EQ(guards.refusalForWalkedItem(walk, tooDeep), belowScreenshots);
    EXPECT_EQ(guards.screenshotException("/Users/ann/Pictures"), std::nullopt);
    EXPECT_EQ(guards.screenshotException("/Users/ann/Desktop/Shots"), guards.exceptionFor("/Users/ann/Desktop/Shots"));
}

TEST(PathGuardsTest, recognisesAPlaceOnlyWhileItIsTheSameFolder) {
    FakeSystem system{.home = "/home/ann", .files = {{"/home/ann/.kube", file(7)}, {"/home/ann/.ssh", file(8)}}};
    const PathGuards guards = system.guards();
    system.files = {{"/home/ann/.ssh", file(8)}, {"/home/ann/src", file(7)}, {"/data/alias", file(8)}};
    expectVerdicts(guards, {{"~/src/x", mayGo}, {"/data/alias/x = ~/.ssh", inside}}, {.textTells = false});
}

TEST(PathGuardsOnDiskTest, recognisesAPlaceMountedASecondTime) {
    const TemporaryFolder folder;
    const auto keys = folder.makeFolder("home/.ssh/old/keys").parent_path().parent_path();
    const auto alias = folder.makeFolder("home/src/alias");
    const PathGuards guards(folder / "home", {});
    expectVerdicts(guards, {{"~/src/alias", mayGo}});
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount((keys / "old").c_str(), alias.c_str(), nullptr, MS_BIND, nullptr), 0);
        expectVerdicts(guards, {{"~/src/alias/keys/mine = ~/.ssh", inside}}, {.textTells = false});
        EXPECT_EQ(guards.refusalForWalkedItem(guards.walkRoot(alias), "keys"), said(inside, "~/.ssh"));
        ASSERT_EQ(::mount(keys.c_str(), alias.c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_EQ(guards.refusalForRoot(alias), said(inside, "~/.ssh"));
        expectVerdicts(guards, {{"~/src/alias/old/keys = ~/.ssh", inside}}, {.textTells = false});
        EXPECT_EQ(guards.refusalForItem(alias), said(inside, "~/.ssh"));

        // One that a later mount covers tells nothing of what is seen there.
        ASSERT_EQ(::mount("none", folder.makeFolder("home/m/x").c_str(), "tmpfs", 0, nullptr), 0);
        ASSERT_EQ(::mount((keys / "old").c_str(), (folder / "home/m").c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_EQ(guards.refusalForRoot(folder / "home/m/x"), said(inside, "~/.ssh"));
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

TEST(PathGuardsOnDiskTest, protectsWhatIsMountedInAHomeWhereItComesFrom) {
    const TemporaryFolder folder;
    const auto papers = folder.makeFolder("data/big/papers/2024").parent_path();
    const auto documents = folder.makeFolder("people/ann/Documents");
    const auto again = folder.makeFolder("again");
    const PathGuards guards(folder / "people/ann", {});
    const auto walked = [&](const char* root, const char* item) {
        return guards.refusalForWalkedItem(guards.walkRoot(folder / root), item);
    };
    EXPECT_EQ(walked("data/big", "papers"), std::nullopt);
    EXPECT_EQ(guards.refusalForItem(folder / "data/big"), std::nullopt);
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount(papers.c_str(), documents.c_str(), nullptr, MS_BIND, nullptr), 0);
        for (const char* item : {"papers", "PAPERS/2024", "papers/letter"})
            EXPECT_EQ(walked("data/big", item), said(inside, "~/Documents")) << item;
        for (const char* item : {"papers2", "other"})
            EXPECT_EQ(walked("data/big", item), std::nullopt) << item;
        EXPECT_EQ(guards.refusalForRoot(folder / "data/big/papers/2024"), said(inside, "~/Documents"));
        EXPECT_EQ(guards.refusalForItem(papers / "letter"), said(inside, "~/Documents"));
        EXPECT_EQ(guards.refusalForItem(folder / "data/big"),
                  said(holds, "~/Documents", (folder / "data/big").native()));

        ASSERT_EQ(::mount((folder / "people").c_str(), again.c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_NE(guards.refusalForRoot(again), std::nullopt);
        EXPECT_NE(walked("again", "ann"), std::nullopt) << "the home itself";
        EXPECT_EQ(walked("again", "ann/.ssh/key"), said(inside, "~/.ssh"));
        EXPECT_EQ(walked("again", "ann/src"), std::nullopt);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
