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

TEST(VolumeFactsTest, answersForWhatAnyDescriptorNames) {
    const auto processes = openFolder("/proc");
    EXPECT_EQ(fileSystemType(processes.get()), "proc");
    EXPECT_EQ(volumeUUID(processes.get()), std::nullopt);
    EXPECT_TRUE(isMountRoot(processes.get()));

    const TemporaryFolder folder;
    const auto readable = openFolder(folder.path());
    const auto named = openFolder(folder.path(), O_PATH);
    EXPECT_EQ(mountIdentity(readable.get()), mountIdentity(named.get()));
    EXPECT_TRUE(mountIdentity(named.get()).has_value());
    EXPECT_FALSE(isMountRoot(named.get()));
    EXPECT_TRUE(isMountRoot(-1)) << "what cannot be told is kept out of";
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
    const auto firstPath = folder.makeFolder("a first one");
    const auto secondPath = folder.makeFolder("second");
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount("none", firstPath.c_str(), "tmpfs", 0, "size=64k"), 0);
        ASSERT_EQ(::mount("none", secondPath.c_str(), "tmpfs", MS_NOATIME, "size=64k"), 0);
        const auto first = openFolder(firstPath);
        const auto second = openFolder(secondPath);
        EXPECT_EQ(fileSystemType(first.get()), "tmpfs");
        EXPECT_TRUE(volumeUUID(first.get()).has_value());
        EXPECT_NE(volumeUUID(second.get()), volumeUUID(first.get()));
        EXPECT_EQ(accessTimes(first.get()), AccessTimes::kept);
        EXPECT_EQ(accessTimes(second.get()), AccessTimes::notKept);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
