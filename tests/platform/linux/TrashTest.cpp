#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "base/UnicodeText.h"
#include "platform/FileStatus.h"
#include "platform/OwnedDescriptor.h"
#include "platform/Trash.h"
#include "platform/TrashInfo.h"
#include "platform/linux/TrashMove.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

using linux_platform::TrashCalls;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Moved = std::expected<std::optional<std::filesystem::path>, std::string>;

const std::string trash = "home/.local/share/Trash/";

bool isThere(const std::filesystem::path& path) {
    return statusOfPath(path).has_value();
}

std::string sentence(const Moved& moved) {
    return moved ? "moved" : moved.error();
}

class TrashTest : public testing::Test {
protected:
    [[nodiscard]] Moved move(const std::filesystem::path& path) const {
        const OwnedDescriptor parent(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const auto status = statusOfPath(path);
        const TrashItem item{parent.get(), path, status->device, status->inode};
        return linux_platform::moveToTrash(item, folder / "home", now, calls);
    }
    /// Moves it, and sees the very item in the place that was given.
    [[nodiscard]] std::filesystem::path moved(const std::filesystem::path& path) const {
        const auto before = statusOfPath(path);
        const auto moved = move(path);
        if (!moved || !*moved) {
            ADD_FAILURE() << path << ": " << (moved ? "no place" : moved.error());
            return {};
        }
        EXPECT_FALSE(isThere(path)) << path;
        EXPECT_EQ(statusOfPath(**moved).value_or(FileStatus()).inode, before->inode) << path;
        return **moved;
    }
    /// Sees it refused with the item where it was, and no info of it left.
    [[nodiscard]] std::string refused(const std::filesystem::path& path) const {
        const auto before = statusOfPath(path);
        const auto infos = namesIn("info");
        const auto moved = move(path);
        EXPECT_EQ(statusOfPath(path).value_or(FileStatus()).inode, before->inode) << path;
        EXPECT_EQ(namesIn("info"), infos) << path;
        return sentence(moved);
    }
    [[nodiscard]] std::string infoOf(const std::filesystem::path& place) const {
        std::ifstream file(place.parent_path().parent_path() / "info" / (place.filename().native() + ".trashinfo"));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// None where there is no Trash.
    [[nodiscard]] std::vector<std::string> namesIn(const std::string& part) const {
        return std::filesystem::is_directory(folder / (trash + part)) ? folder.names(trash + part)
                                                                      : std::vector<std::string>();
    }

    const TemporaryFolder folder;
    const std::filesystem::path home = folder.makeFolder("home");
    TrashCalls calls = TrashCalls::ofSystem();
    Date now = Date::fromSeconds(1'700'000'000);
};

TEST_F(TrashTest, movesAnyItemWithAnInfoOfItsOwn) {
    const std::string longName = "a" + [] {
        std::string text;
        while (text.size() < 254)
            text += "é";
        return text;
    }();
    for (const std::string& name :
         {std::string("a b.txt"), std::string("-"), std::string("line\nbreak%"), std::string("not\xff utf-8"), longName,
          longName.substr(0, 247) + ".tar.gz", "a." + longName.substr(0, 253)}) {
        const auto item = folder.makeFile("home/" + name);
        const auto place = moved(item);
        EXPECT_EQ(place.parent_path(), folder / (trash + "files"));
        EXPECT_EQ(place.filename() == name, name.size() <= 245) << name;
        EXPECT_TRUE(name.size() <= 245 || isValidUTF8(place.filename().native())) << name;
        EXPECT_EQ(place.extension() == ".gz", item.extension() == ".gz");
        EXPECT_EQ(deletionDate(place), now) << name;
    }
    EXPECT_THAT(infoOf(folder / (trash + "files/line\nbreak%")),
                AllOf(StartsWith("[Trash Info]\nPath=" + home.native() + "/line%0Abreak%25\nDeletionDate=2023-11-1"),
                      HasSubstr("T")));
    EXPECT_THAT(infoOf(folder / (trash + "files/not\xff utf-8")), HasSubstr("/not%FF%20utf-8\n"));

    folder.makeFile("home/build/deep/file");
    EXPECT_TRUE(std::filesystem::exists(moved(home / "build") / "deep/file"));
    EXPECT_EQ(std::filesystem::read_symlink(moved(folder.makeLink("home/link", "nowhere"))), "nowhere");

    for (const char* made : {"", "files", "info"})
        EXPECT_EQ(statusOfPath(folder / (trash + made))->mode, 0700);
    EXPECT_EQ(statusOfPath(folder / (trash + "info/build.trashinfo"))->mode, 0600);
}

TEST_F(TrashTest, numbersNamesThatAreTakenInEitherFolder) {
    struct Row {
        std::string name;
        std::vector<std::string> taken;
        std::string expected;
    };
    const std::string longStem(241, 'x');
    for (const auto& row : std::vector<Row>{
             {"a.txt", {"files/a.txt"}, "a.2.txt"},
             {"b.tar.gz", {"info/b.tar.gz.trashinfo", "files/b.2.tar.gz"}, "b.3.tar.gz"},
             {".hidden", {"files/.hidden"}, ".2.hidden"},
             {longStem + ".txt", {"files/" + longStem + ".txt"}, longStem.substr(0, 239) + ".2.txt"},
         }) {
        for (const auto& taken : row.taken)
            folder.makeFile(trash + taken, "another's");
        EXPECT_EQ(moved(folder.makeFile("home/" + row.name)).filename(), row.expected);
        for (const auto& taken : row.taken)
            EXPECT_EQ(folder.read(trash + taken), "another's") << taken;
    }
    // Taken between looking and renaming, by another name of the item itself.
    const auto item = folder.makeFile("home/late");
    calls.rename = [&, system = calls.rename](int from, const char* name, int to, const char* newName) {
        if (newName == std::string("late")) std::filesystem::create_hard_link(item, folder / (trash + "files/late"));
        return system(from, name, to, newName);
    };
    EXPECT_EQ(moved(item).filename(), "late.2");
    EXPECT_FALSE(isThere(folder / (trash + "info/late.trashinfo")));
}

TEST_F(TrashTest, refusesATrashThatAnotherCouldReachInto) {
    struct Row {
        const char* place;
        std::function<void(const std::filesystem::path&)> spoil;
        const char* because;
    };
    const auto elsewhere = folder.makeFolder("elsewhere");
    const auto link = [&](const auto& place) { std::filesystem::create_symlink(elsewhere, place); };
    const auto file = [&](const auto& place) { std::ofstream(place) << "x"; };
    const auto open = [&](const auto& place) { ::mkdir(place.c_str(), 0700), ::chmod(place.c_str(), 0770); };
    const auto give = [&](const auto& place) { ::mkdir(place.c_str(), 0700), (void)::chown(place.c_str(), 1, 1); };
    const auto item = folder.makeFile("home/item");
    for (const auto& row : std::vector<Row>{{".local", link, "is a link"},
                                            {".local/share/Trash", link, "is a link"},
                                            {".local/share/Trash", file, "is not a folder"},
                                            {".local/share/Trash", open, "other users may write to"},
                                            {".local/share/Trash", give, "belongs to another user"},
                                            {".local/share/Trash/files", open, "other users may write to"},
                                            {".local/share/Trash/info", link, "is a link"},
                                            {".local/share/Trash/info", file, "is not a folder"}}) {
        if (row.because == std::string("belongs to another user") && ::geteuid() != 0) continue;
        const auto place = home / row.place;
        std::filesystem::create_directories(place.parent_path());
        std::filesystem::permissions(place.parent_path(), std::filesystem::perms::owner_all);
        row.spoil(place);
        EXPECT_THAT(refused(item),
                    AllOf(StartsWith("Vostrel could not move it to the Trash because "), HasSubstr(place.native()),
                          HasSubstr(row.because), HasSubstr(", so it left it alone.")));
        std::filesystem::remove_all(home / ".local");
    }
    EXPECT_THAT(folder.names("elsewhere"), IsEmpty());
    EXPECT_THAT(folder.names("home"), ElementsAre("item"));
}

TEST_F(TrashTest, refusesWhatIsInTheTrashOrHoldsItOrLiesElsewhere) {
    const auto inside = moved(folder.makeFile("home/folder/file").parent_path()) / "file";
    for (const auto& path : {inside, inside.parent_path(), folder / (trash + "files")})
        EXPECT_THAT(refused(path), HasSubstr("because it is in the Trash already, so"));
    for (const auto& path : {folder / (trash.substr(0, trash.size() - 1)), home / ".local", home})
        EXPECT_THAT(refused(path), HasSubstr("because it holds the Trash, so"));

    const auto item = folder.makeFile("home/a/item");
    folder.makeLink("home/link", home / "a");
    for (const auto& path : {home / "link/item", home / "a/../a/item"})
        EXPECT_THAT(refused(path), HasSubstr("the folder that holds it was moved or replaced"));
}

TEST_F(TrashTest, leavesTheItemWhereItIsWhenACallFails) {
    const auto item = folder.makeFile("home/item");
    const auto system = calls;
    for (const auto& [error, because] :
         {std::pair(ENOSPC, "the disk is full, so it left it alone. Empty the Trash and try again."),
          {EPERM, "permissions"},
          {EXDEV, "would have to copy it"},
          {EINVAL, "cannot promise"},
          {EIO, "the system refused it (Input/output error)"}}) {
        calls.rename = [&](auto...) { return error; };
        EXPECT_THAT(refused(item), HasSubstr(because));
        calls = system;
        if (error == EINVAL) continue;
        calls.sync = [&](int) { return std::expected<void, int>(std::unexpected(error)); };
        EXPECT_THAT(refused(item), HasSubstr(because));
        calls = system;
    }
    EXPECT_THAT(namesIn("files"), IsEmpty());
    EXPECT_THAT(namesIn("info"), IsEmpty());
}

TEST_F(TrashTest, takesNothingElseThatComesIntoTheItemsPlace) {
    const auto item = folder.makeFile("home/item", "the item");
    const auto swap = [&] {
        std::filesystem::rename(item, home / "aside");
        folder.makeFile("home/item", "another");
    };
    const auto system = calls;
    calls.sync = [&](int) -> std::expected<void, int> {
        if (!std::filesystem::exists(home / "aside")) swap();
        return {};
    };
    EXPECT_THAT(sentence(move(item)), HasSubstr("it was replaced meanwhile"));
    EXPECT_THAT(namesIn("info"), IsEmpty());

    const auto putBackUnless = [&](bool isTakenAgain) {
        std::filesystem::rename(home / "aside", item);
        calls = system;
        calls.rename = [&, isTakenAgain](int from, const char* name, int to, const char* newName) {
            if (std::filesystem::exists(item)) swap();
            if (isTakenAgain && !std::filesystem::exists(item)) folder.makeFile("home/item", "a third");
            return system.rename(from, name, to, newName);
        };
        return sentence(move(item));
    };
    EXPECT_EQ(putBackUnless(false),
              "Something else took its place while Vostrel was moving it to the Trash, so Vostrel put that back and "
              "left everything alone.");
    EXPECT_EQ(folder.read("home/item") + folder.read("home/aside"), "anotherthe item");
    EXPECT_THAT(namesIn("files"), IsEmpty());
    EXPECT_THAT(namesIn("info"), IsEmpty());

    EXPECT_EQ(putBackUnless(true),
              "Something else took its place while Vostrel was moving it to the Trash and could not be put back (File "
              "exists). Restore it from the Trash: it is at " +
                  (folder / (trash + "files/item")).native() + ".");
    EXPECT_EQ(folder.read("home/item") + folder.read("home/aside"), "a thirdthe item");
    EXPECT_EQ(folder.read(trash + "files/item"), "another");
    EXPECT_THAT(namesIn("info"), ElementsAre("item.trashinfo"));

    calls.rename = [&](int, const char*, int to, const char* newName) {
        return ::linkat(AT_FDCWD, (home / "aside").c_str(), to, newName, 0), EIO;
    };
    EXPECT_THAT(sentence(move(home / "aside")), HasSubstr("Input/output error")) << "it is there, and here as well";
    std::filesystem::remove(folder / (trash + "files/aside"));
    calls.rename = [&](auto... renamed) { return system.rename(renamed...), EIO; };
    EXPECT_EQ(moved(home / "aside").filename(), "aside") << "it was moved, whatever was reported";
    EXPECT_THAT(namesIn("info"), ElementsAre("aside.trashinfo", "item.trashinfo"));
}

TEST_F(TrashTest, usesTheTrashOfTheDiskThatTheItemIsOn) {
    const auto disk = folder.makeFolder("home/disk");
    const std::string user = std::to_string(::geteuid());
    struct Row {
        std::function<void()> prepare;
        std::string trash;
    };
    const auto shared = [&](mode_t mode) {
        return [&, mode] { ::mkdir((disk / ".Trash").c_str(), 0700), ::chmod((disk / ".Trash").c_str(), mode); };
    };
    const bool ran = withPrivateMounts([&] {
        for (const auto& row : std::vector<Row>{
                 {[] {}, ".Trash-" + user},
                 {shared(01777), ".Trash/" + user},
                 {shared(0777), ".Trash-" + user},
                 {[&] { std::filesystem::create_symlink(folder.makeFolder("sticky"), disk / ".Trash"); },
                  ".Trash-" + user},
             }) {
            ASSERT_EQ(::mount("none", disk.c_str(), "tmpfs", 0, "size=1m"), 0);
            row.prepare();
            const auto place = moved(folder.makeFile("home/disk/some folder/item"));
            EXPECT_EQ(place, disk / row.trash / "files/item");
            EXPECT_THAT(infoOf(place), HasSubstr("\nPath=some%20folder/item\n"));
            EXPECT_THAT(refused(place), HasSubstr("it is in the Trash already"));
            EXPECT_THAT(refused(disk / row.trash.substr(0, row.trash.find('/'))), HasSubstr("it holds the Trash"));
            EXPECT_THAT(refused(disk), HasSubstr("something is mounted on it"));
            ASSERT_EQ(::mount("none", (disk / row.trash / "files").c_str(), "tmpfs", 0, "mode=700"), 0);
            EXPECT_THAT(refused(folder.makeFile("home/disk/item")), HasSubstr("/files is on another disk, so"));
            ::umount2((disk / row.trash / "files").c_str(), MNT_DETACH);

            ASSERT_EQ(::mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
            EXPECT_THAT(refused(disk / "item"), HasSubstr("because this disk can only be read, so"));
            ::umount2(disk.c_str(), MNT_DETACH);
        }
        // A bind mount keeps the device number, and no rename leads out of it.
        folder.makeFile("home/shown/item");
        ASSERT_EQ(::mount((home / "shown").c_str(), disk.c_str(), nullptr, MS_BIND, nullptr), 0);
        EXPECT_EQ(moved(disk / "item"), disk / (".Trash-" + user) / "files/item");
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
