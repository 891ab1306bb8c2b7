#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "filesystem/SizeWalker.h"
#include "platform/OwnedDescriptor.h"
#include "support/PrivateMounts.h"
#include "support/Rounds.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

Measured measure(const std::filesystem::path& root, unsigned helpers, std::size_t maxDepth = 256) {
    const SizeWalker walker{
        .access = [](const auto&) { return AccessDecision{}; }, .maxDepth = maxDepth, .helpers = helpers};
    LinkSet links;
    return std::get<Measured>(walker.walk(root, {}, {}, links));
}

/// Folders one in the other, far deeper than any path reaches, each with a file.
void makeDeepFolders(const std::filesystem::path& root, int depth) {
    OwnedDescriptor at(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (; depth > 0; --depth) {
        ASSERT_EQ(::mkdirat(at.get(), "d", 0700), 0);
        at = OwnedDescriptor(::openat(at.get(), "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(::mknodat(at.get(), "f", S_IFREG | 0600, 0), 0);
    }
}

/// Runs steps on a thread whose stack has room for some dozens of nested calls, not for thousands.
void withLittleStack(std::function<void()> steps) {
    pthread_attr_t little{};
    ::pthread_attr_init(&little);
    ::pthread_attr_setstacksize(&little, 256 << 10U);
    pthread_t thread{};
    const auto run = [](void* given) { return (*static_cast<std::function<void()>*>(given))(), given; };
    ASSERT_EQ(::pthread_create(&thread, &little, run, &steps), 0);
    ::pthread_join(thread, nullptr);
}

TEST(SizeWalkerOnDiskTest, needsNeitherStackNorDescriptorsForThousandsOfLevels) {
    // Every open resolves the whole path, so time grows with the square of the depth; only a long night goes to 10,000.
    const int depth = std::min(10'000, test::rounds(1'500));
    const TemporaryFolder home;
    makeDeepFolders(home.path(), depth);
    rlimit descriptors{};
    ::getrlimit(RLIMIT_NOFILE, &descriptors);
    const rlimit few{64, descriptors.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);
    withLittleStack([&] {
        for (const unsigned helpers : {0U, 7U})
            EXPECT_EQ(measure(home.path(), helpers, 20'000).totals.files, depth);
        WalkTotals expected;
        expected.files = 256;
        expected.addUnreadable(UnreadableReason::tooDeep);
        EXPECT_EQ(measure(home.path(), 0).totals, expected);
    });
    ::setrlimit(RLIMIT_NOFILE, &descriptors);
    EXPECT_EQ(std::system(("rm -rf " + home.path().native()).c_str()), 0) << "the folder cannot remove so deep a tree";
}

TEST(SizeWalkerOnDiskTest, doesNotEnterWhatIsMountedInside) {
    const TemporaryFolder home;
    home.makeFile("shown/x");
    const auto bound = home.makeFolder("r/bound");
    const auto memory = home.makeFolder("r/memory");
    home.makeFile("r/y", "");
    const bool ran = withPrivateMounts([&] {
        ASSERT_EQ(::mount((home / "shown").c_str(), bound.c_str(), nullptr, MS_BIND, nullptr), 0);
        ASSERT_EQ(::mount("none", memory.c_str(), "tmpfs", 0, "size=64k"), 0);
        WalkTotals expected;
        expected.files = 1;
        expected.otherVolumes = 2;
        EXPECT_EQ(measure(home / "r", 0).totals, expected);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
}

}  // namespace
}  // namespace vostrel
