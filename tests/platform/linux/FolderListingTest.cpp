#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
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
        byName[std::string(entry.name)] = entry;
        onEntry();
    }
    std::map<std::string, FolderEntry> byName;
    std::function<void()> onEntry = [] {};
};

void list(const std::filesystem::path& path, ListingDetail detail, Entries& entries) {
    const OwnedDescriptor folder(openFolder(path));
    FolderListing listing(detail);
    std::expected<FolderListing::Step, int> step;
    do {
        step = listing.readSome(folder.get(), entries);
        ASSERT_TRUE(step.has_value());
    } while (*step != FolderListing::Step::end);
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
    ASSERT_EQ(::mknod((home / "socket").c_str(), S_IFSOCK | 0600, 0), 0);
    struct stat file{};
    ASSERT_EQ(::stat((home / "file").c_str(), &file), 0);

    const std::map<std::string, EntryType> expected{
        {"file", EntryType::file}, {oddName, EntryType::file}, {"folder", EntryType::folder}, {"link", EntryType::link},
        {"twin", EntryType::file}, {"pipe", EntryType::fifo},  {"socket", EntryType::socket}};
    for (const auto detail : {ListingDetail::sizes, ListingDetail::facts}) {
        Entries entries;
        list(home.path(), detail, entries);
        EXPECT_EQ(entries.byName.size(), expected.size());
        for (const auto& [name, type] : expected)
            EXPECT_EQ(entries.byName[name].type, type) << name;
        const auto& twin = entries.byName["twin"];
        EXPECT_EQ(twin.fileID, file.st_ino);
        EXPECT_EQ(twin.linkCount, 2);
        EXPECT_EQ(twin.allocated, file.st_blocks * 512);
        EXPECT_EQ(twin.error, 0);
        const bool hasDates = detail == ListingDetail::facts;
        EXPECT_EQ(twin.modified, hasDates ? Date::fromTimespec(file.st_mtim) : Date());
        EXPECT_EQ(twin.changed, hasDates ? Date::fromTimespec(file.st_ctim) : Date());
    }
}

TEST(FolderListingTest, leavesOutWhatVanishesWhileItLists) {
    const TemporaryFolder home;
    for (int number = 0; number < 20; ++number)
        home.makeFile(std::to_string(number));
    Entries entries;
    entries.onEntry = [&] {
        for (const auto& name : home.names()) {
            if (!entries.byName.contains(name)) std::filesystem::remove(home / name);
        }
    };
    list(home.path(), ListingDetail::sizes, entries);
    EXPECT_EQ(entries.byName.size(), 1);
    EXPECT_EQ(entries.byName.begin()->second.error, 0);
}

TEST(FolderListingTest, failsWithTheSystemsErrorAndEndsTheProcessRatherThanWrapASize) {
    const TemporaryFolder home;
    const OwnedDescriptor file(::open(home.makeFile("file").c_str(), O_RDONLY | O_CLOEXEC));
    Entries entries;
    EXPECT_EQ(FolderListing(ListingDetail::sizes).readSome(file.get(), entries).error(), ENOTDIR);
    EXPECT_EQ(FolderListing(ListingDetail::sizes).readSome(-1, entries).error(), EBADF);
    EXPECT_EQ(linux_platform::allocatedBytes(UINT64_MAX / 1024), INT64_MAX - 511);
    EXPECT_DEATH((void)linux_platform::allocatedBytes(UINT64_MAX / 1024 + 1), "the size of a file does not fit");
}

/// The error of opening by a path, or by a name relative to an open folder; 0 when it opens.
int errorOf(const std::filesystem::path& path) {
    const OwnedDescriptor opened(openFolder(path));
    return opened.isOpen() ? 0 : errno;
}
int errorOf(const OwnedDescriptor& folder, const char* name) {
    const OwnedDescriptor opened(openSubfolder(folder.get(), name));
    return opened.isOpen() ? 0 : errno;
}

TEST(FolderOpeningTest, followsNoLinkInAnyComponent) {
    const TemporaryFolder home;
    home.makeFolder("real/inside");
    home.makeLink("link", home / "real");
    home.makeFile("file");
    const std::pair<const char*, int> table[] = {{"real/inside", 0}, {"link", ENOTDIR},       {"link/inside", ELOOP},
                                                 {"file", ENOTDIR},  {"file/below", ENOTDIR}, {"nothing", ENOENT}};
    const OwnedDescriptor folder(openFolder(home.path()));
    for (const auto& [path, error] : table) {
        EXPECT_EQ(errorOf(home / path), error) << path;
        EXPECT_EQ(errorOf(folder, path), error) << path;
    }
    for (const char* outside : {"..", "/"})
        EXPECT_EQ(errorOf(folder, outside), EXDEV) << outside;
}

TEST(FolderOpeningTest, leavesTheAccessDateAndRefusesWhatIsMounted) {
    const TemporaryFolder home;
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount("none", home.path().c_str(), "tmpfs", MS_STRICTATIME, "size=64k"), 0);
        const auto folder = home.makeFile("folder/file").parent_path();
        const auto mounted = home.makeFolder("mounted");
        const timespec longAgo[2] = {{1'000, 0}, {1'000, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, folder.c_str(), longAgo, 0), 0);
        Entries entries;
        list(folder, ListingDetail::facts, entries);
        struct stat after{};
        ASSERT_EQ(::stat(folder.c_str(), &after), 0);
        EXPECT_EQ(after.st_atim.tv_sec, 1'000);

        ASSERT_EQ(::mount("none", mounted.c_str(), "tmpfs", 0, "size=64k"), 0);
        const OwnedDescriptor above(openFolder(home.path()));
        EXPECT_EQ(errorOf(above, "folder"), 0);
        EXPECT_EQ(errorOf(above, "mounted"), EXDEV);
        EXPECT_EQ(errorOf(mounted), 0);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
