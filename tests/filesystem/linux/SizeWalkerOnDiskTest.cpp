#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "filesystem/SizeWalker.h"
#include "platform/OwnedDescriptor.h"
#include "support/PrintTotals.h"
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
class DeepFolders {
public:
    DeepFolders(const std::filesystem::path& root, int depth) : top(open(AT_FDCWD, root.c_str())), levels(depth) {
        OwnedDescriptor at(::dup(top.get()));
        for (int level = 0; level < depth; ++level) {
            if (::mkdirat(at.get(), "d", 0700) != 0) throw std::runtime_error("mkdirat");
            at = OwnedDescriptor(open(at.get(), "d"));
            if (::mknodat(at.get(), "f", S_IFREG | 0600, 0) != 0) throw std::runtime_error("mknodat");
        }
    }
    DeepFolders(const DeepFolders&) = delete;
    DeepFolders& operator=(const DeepFolders&) = delete;
    /// Takes the upper half of what is left out of the way again and again, since no path reaches the bottom.
    ~DeepFolders() {
        for (; levels > 0; --levels) {
            const OwnedDescriptor upper(open(top.get(), "d"));
            ::unlinkat(upper.get(), "f", 0);
            ::renameat(upper.get(), "d", top.get(), "next");
            ::unlinkat(top.get(), "d", AT_REMOVEDIR);
            ::renameat(top.get(), "next", top.get(), "d");
        }
    }

private:
    static int open(int at, const char* path) { return ::openat(at, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }

    OwnedDescriptor top;
    int levels;
};

class FewDescriptors {
public:
    FewDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit few{64, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before); }

private:
    rlimit before{};
};

/// Runs steps on a thread whose stack has room for some dozens of nested calls, not for thousands.
void withLittleStack(std::function<void()> steps) {
    pthread_attr_t attributes;
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setstacksize(&attributes, 256 << 10U);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(::pthread_create(&thread, &attributes, run, &steps), 0);
    ::pthread_join(thread, nullptr);
    ::pthread_attr_destroy(&attributes);
}

TEST(SizeWalkerOnDiskTest, needsNeitherStackNorDescriptorsForThousandsOfLevels) {
    // Every open resolves the whole path, so time grows with the square of the depth; only a long night goes to 10,000.
    const int depth = std::min(10'000, test::rounds(1'500));
    const TemporaryFolder home;
    const DeepFolders folders(home.path(), depth);
    const FewDescriptors few;
    withLittleStack([&] {
        for (const unsigned helpers : {0U, 7U})
            EXPECT_EQ(measure(home.path(), helpers, 20'000).totals.files, depth);
        WalkTotals expected;
        expected.files = 256;
        expected.unreadableFolders = 1;
        expected.unreadableReason = UnreadableReason::tooDeep;
        EXPECT_EQ(measure(home.path(), 0).totals, expected);
    });
}

TEST(SizeWalkerOnDiskTest, countsAHundredThousandNamesInOneFolder) {
    constexpr int names = 100'000;
    const TemporaryFolder home;
    const bool ran = withPrivateMounts([&] {  // in memory, because a disk takes many seconds to make them
        ASSERT_EQ(::mount("none", home.path().c_str(), "tmpfs", 0, "size=200m"), 0);
        const OwnedDescriptor folder(::open(home.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const std::string longName(240, 'n');
        for (int number = 0; number < names; ++number) {
            const std::string name = (number % 10 == 0 ? longName : "") + std::to_string(number);
            ASSERT_EQ(::mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0), 0);
        }
        EXPECT_EQ(measure(home.path(), FolderWalk::usualHelpers()).totals.files, names);
    });
    if (!ran) GTEST_SKIP() << "this account may not mount";
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
