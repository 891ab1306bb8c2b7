#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include "platform/OwnedDescriptor.h"
#include "platform/VolumeFacts.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

OwnedDescriptor openFolder(const std::filesystem::path& path, int flags = O_RDONLY) {
    return OwnedDescriptor(::open(path.c_str(), flags | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
}

TEST(VolumeFactsTest, givesPseudoFileSystemsATypeAndNoUUID) {
    const auto processes = openFolder("/proc");
    EXPECT_EQ(fileSystemType(processes.get()), "proc");
    EXPECT_EQ(volumeUUID(processes.get()), std::nullopt);
    EXPECT_TRUE(isMountRoot(processes.get()));
}

TEST(VolumeFactsTest, answersForAFolderOpenedOnlyToNameIt) {
    const TemporaryFolder folder;
    const auto readable = openFolder(folder.path());
    const auto named = openFolder(folder.path(), O_PATH);
    EXPECT_EQ(mountIdentity(readable.get()), mountIdentity(named.get()));
    EXPECT_TRUE(mountIdentity(named.get()).has_value());
    EXPECT_EQ(fileSystemType(readable.get()), fileSystemType(named.get()));
    EXPECT_FALSE(isMountRoot(named.get()));
}

TEST(VolumeFactsTest, knowsNothingOfADescriptorThatIsNotOpen) {
    EXPECT_EQ(mountIdentity(-1), std::nullopt);
    EXPECT_TRUE(isMountRoot(-1));
    EXPECT_EQ(volumeUUID(-1), std::nullopt);
    EXPECT_EQ(fileSystemType(-1), std::nullopt);
    EXPECT_EQ(accessTimes(-1), AccessTimes::notKept);
}

TEST(VolumeFactsTest, tellsABindMountFromTheFolderItShows) {
    const TemporaryFolder folder;
    const auto shown = folder.makeFolder("shown");
    const auto inside = folder.makeFolder("shown/inside");
    const auto alias = folder.makeFolder("alias");
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount(shown.c_str(), alias.c_str(), nullptr, MS_BIND, nullptr), 0);
        const auto original = openFolder(shown);
        const auto bound = openFolder(alias);
        EXPECT_EQ(mountIdentity(original.get())->device, mountIdentity(bound.get())->device);
        EXPECT_NE(mountIdentity(original.get()), mountIdentity(bound.get()));
        EXPECT_EQ(mountIdentity(openFolder(alias / "inside").get()), mountIdentity(bound.get()));
        EXPECT_FALSE(isMountRoot(original.get()));
        EXPECT_TRUE(isMountRoot(bound.get()));
        EXPECT_FALSE(isMountRoot(openFolder(inside).get()));
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

TEST(VolumeFactsTest, recognisesAMemoryVolumeAndItsAccessTimes) {
    const TemporaryFolder folder;
    const auto first = folder.makeFolder("a first one");
    const auto second = folder.makeFolder("second");
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount("none", first.c_str(), "tmpfs", 0, "size=64k"), 0);
        ASSERT_EQ(::mount("none", second.c_str(), "tmpfs", MS_NOATIME, "size=64k"), 0);
        const auto uuid = volumeUUID(openFolder(first).get());
        EXPECT_EQ(fileSystemType(openFolder(first).get()), "tmpfs");
        EXPECT_TRUE(uuid.has_value());
        EXPECT_EQ(volumeUUID(openFolder(first).get()), uuid);
        EXPECT_NE(volumeUUID(openFolder(second).get()), uuid);
        EXPECT_EQ(accessTimes(openFolder(first).get()), AccessTimes::kept);
        EXPECT_EQ(accessTimes(openFolder(second).get()), AccessTimes::notKept);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

TEST(VolumeFactsTest, recordsDatesOnlyWhereTheFileSystemIsKnownTo) {
    struct Row {
        std::string_view type;
        bool added;
        bool lastUsed;
    };
    const Row rows[] = {{"ext4", true, true},   {"btrfs", true, true},  {"tmpfs", true, true}, {"overlay", true, false},
                        {"nfs4", false, false}, {"vfat", false, false}, {"", false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(recordsAddedDates(row.type), row.added) << row.type;
        EXPECT_EQ(recordsLastUsedDates(row.type, AccessTimes::kept), row.lastUsed) << row.type;
        EXPECT_FALSE(recordsLastUsedDates(row.type, AccessTimes::notKept)) << row.type;
    }
}

}  // namespace
}  // namespace vostrel
