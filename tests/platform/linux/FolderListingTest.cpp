#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <climits>
#include <functional>
#include <map>

#include "platform/FolderListing.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/linux/StatusReading.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

class Entries final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override {
        FolderEntry kept = entry;
        kept.name = {};
        byName.emplace(entry.name, kept);
        onEntry();
    }
    std::map<std::string, FolderEntry> byName;
    std::function<void()> onEntry = [] {};
};

void list(const std::filesystem::path& path, ListingDetail detail, Entries& entries) {
    const OwnedDescriptor folder(openFolder(path));
    ASSERT_TRUE(folder.isOpen());
    FolderListing listing(detail);
    while (true) {
        const auto step = listing.readSome(folder.get(), entries);
        ASSERT_TRUE(step.has_value());
        if (*step == FolderListing::Step::end) return;
    }
}

TEST(FolderListingTest, tellsWhatEachEntryIsAndOpensNone) {
    const TemporaryFolder home;
    const std::string oddName = "line\nbreak \xFF" + std::string(240, 'x');
    home.makeFile("file", std::string(10'000, 'x'));
    home.makeFile(oddName, "");
    home.makeFolder("folder");
    home.makeLink("link", "nowhere");
    std::filesystem::create_hard_link(home / "file", home / "twin");
    ASSERT_EQ(::mkfifo((home / "pipe").c_str(), 0600), 0);  // opening it would wait for a writer
    const OwnedDescriptor server(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    (home / "socket").native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

    const std::map<std::string, EntryType> expected{
        {"file", EntryType::file}, {oddName, EntryType::file}, {"folder", EntryType::folder}, {"link", EntryType::link},
        {"twin", EntryType::file}, {"pipe", EntryType::fifo},  {"socket", EntryType::socket}};
    struct stat file{};
    ASSERT_EQ(::stat((home / "file").c_str(), &file), 0);
    for (const auto detail : {ListingDetail::sizes, ListingDetail::facts}) {
        Entries entries;
        list(home.path(), detail, entries);
        std::map<std::string, EntryType> types;
        for (const auto& [name, entry] : entries.byName)
            types[name] = entry.type;
        EXPECT_EQ(types, expected);
        const auto& twin = entries.byName.at("twin");
        EXPECT_EQ(twin.fileID, file.st_ino);
        EXPECT_EQ(twin.linkCount, 2);
        EXPECT_EQ(twin.allocated, file.st_blocks * 512);
        EXPECT_EQ(twin.error, 0);
        if (detail == ListingDetail::facts) {
            EXPECT_EQ(twin.modified, Date::fromTimespec(file.st_mtim));
            EXPECT_EQ(twin.changed, Date::fromTimespec(file.st_ctim));
        }
    }
}

TEST(FolderListingTest, leavesOutWhatVanishesWhileItLists) {
    const TemporaryFolder home;
    for (int number = 0; number < 20; ++number)
        home.makeFile(std::to_string(number));
    Entries entries;
    entries.onEntry = [&] {
        for (int number = 0; number < 20; ++number) {
            if (!entries.byName.contains(std::to_string(number)))
                std::filesystem::remove(home / std::to_string(number));
        }
    };
    list(home.path(), ListingDetail::sizes, entries);
    EXPECT_EQ(entries.byName.size(), 1);
    EXPECT_EQ(entries.byName.begin()->second.error, 0);
}

TEST(FolderListingTest, failsWithTheSystemsError) {
    const TemporaryFolder home;
    const OwnedDescriptor file(::open(home.makeFile("file").c_str(), O_RDONLY | O_CLOEXEC));
    Entries entries;
    EXPECT_EQ(FolderListing(ListingDetail::sizes).readSome(file.get(), entries).error(), ENOTDIR);
    EXPECT_EQ(FolderListing(ListingDetail::sizes).readSome(-1, entries).error(), EBADF);
}

TEST(FolderListingTest, endsTheProcessRatherThanWrapASize) {
    EXPECT_EQ(linux_platform::allocatedBytes(UINT64_MAX / 1024), INT64_MAX - 511);
    EXPECT_DEATH((void)linux_platform::allocatedBytes(UINT64_MAX / 1024 + 1), "the size of a file does not fit");
}

int errorOfOpening(const std::function<int()>& open) {
    const OwnedDescriptor opened(open());
    return opened.isOpen() ? 0 : errno;
}

TEST(FolderOpeningTest, followsNoLinkInAnyComponent) {
    const TemporaryFolder home;
    home.makeFolder("real/inside");
    home.makeLink("link", home / "real");
    home.makeFile("file");
    const std::pair<const char*, int> rows[] = {{"real/inside", 0}, {"link", ENOTDIR},       {"link/inside", ELOOP},
                                                {"file", ENOTDIR},  {"file/below", ENOTDIR}, {"nothing", ENOENT}};
    const OwnedDescriptor folder(openFolder(home.path()));
    for (const auto& [path, error] : rows) {
        EXPECT_EQ(errorOfOpening([&] { return openFolder(home / path); }), error) << path;
        EXPECT_EQ(errorOfOpening([&] { return openSubfolder(folder.get(), path); }), error) << path;
    }
    EXPECT_EQ(errorOfOpening([&] { return openSubfolder(folder.get(), ".."); }), EXDEV);
    EXPECT_EQ(errorOfOpening([&] { return openSubfolder(folder.get(), "/"); }), EXDEV);
}

TEST(FolderOpeningTest, goesBeyondTheLongestPathOfOneCall) {
    const TemporaryFolder home;
    const std::string name(255, 'n');
    std::string path = home.path();
    while (path.size() < 3 * PATH_MAX) {
        const OwnedDescriptor above(openFolder(path));
        ASSERT_TRUE(above.isOpen()) << path.size();
        ASSERT_EQ(::mkdirat(above.get(), name.c_str(), 0700), 0);
        path += "/" + name;
    }
    EXPECT_EQ(errorOfOpening([&] { return openFolder(path); }), 0);
    EXPECT_EQ(errorOfOpening([&] { return openFolder(path + "/nothing"); }), ENOENT);
    EXPECT_EQ(errorOfOpening([&] { return openFolder("/" + std::string(2 * PATH_MAX, 'n')); }), ENAMETOOLONG);
}

TEST(FolderOpeningTest, leavesTheAccessDateAndRefusesWhatIsMounted) {
    const TemporaryFolder home;
    const auto folder = home.makeFolder("folder");
    home.makeFile("folder/file");
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount("none", home.path().c_str(), "tmpfs", MS_STRICTATIME, "size=64k"), 0);
        const timespec longAgo[2] = {{1'000, 0}, {1'000, 0}};
        for (const char* name : {"folder", "mounted"})
            ASSERT_EQ(::mkdir((home / name).c_str(), 0700), 0);
        ASSERT_EQ(::utimensat(AT_FDCWD, folder.c_str(), longAgo, 0), 0);
        Entries entries;
        list(folder, ListingDetail::facts, entries);
        struct stat after{};
        ASSERT_EQ(::stat(folder.c_str(), &after), 0);
        EXPECT_EQ(after.st_atim.tv_sec, 1'000);

        ASSERT_EQ(::mount("none", (home / "mounted").c_str(), "tmpfs", 0, "size=64k"), 0);
        const OwnedDescriptor above(openFolder(home.path()));
        EXPECT_EQ(errorOfOpening([&] { return openSubfolder(above.get(), "folder"); }), 0);
        EXPECT_EQ(errorOfOpening([&] { return openSubfolder(above.get(), "mounted"); }), EXDEV);
        EXPECT_EQ(errorOfOpening([&] { return openFolder(home / "mounted"); }), 0);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
