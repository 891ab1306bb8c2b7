#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

#include "cleaning/SystemFileOperations.h"
#include "platform/FileStatus.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using Replaced = Removal::Replaced;
using std::chrono::microseconds;
using testing::ElementsAre;

FileIdentity identityOf(const fs::path& path) {
    const auto status = statusOfPath(path);
    return {status->device, status->inode};
}

class RemovalTest : public testing::Test {
protected:
    TemporaryFolder home;
    fs::path item = home / "root/item";
    fs::path victim = home.makeFile("victim/precious").parent_path();

    /// What a preview made now would fix.
    [[nodiscard]] RemovalLimits planned() const {
        RemovalLimits limits{identityOf(item), identityOf(item.parent_path()), Date::now(), [] { return false; }};
        letTimePass();
        return limits;
    }
    /// Longer than the kernel's clock for status changes stands still.
    static void letTimePass() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }
    void makeTree() const {
        for (const char* file : {"root/item/a", "root/item/sub/b", "root/item/sub/deep/c", "root/item/z"})
            home.makeFile(file);
        letTimePass();
    }
    Removal remove(const RemovalLimits& limits) { return SystemFileOperations(home.path()).remove(item, limits); }
    void expectVictimWhole() const { EXPECT_EQ(home.read("victim/precious"), "content"); }
};

TEST_F(RemovalTest, removesAnItemWholeAndCountsWhatWent) {
    makeTree();
    home.makeLink("root/item/toVictim", victim);
    home.makeLink("root/item/broken", "nowhere");
    home.makeFile("root/item/big", std::string(100'000, 'x'));
    home.makeFile("root/item/-rf\n\xff", "");
    ::mkfifo((item / "fifo").c_str(), 0600);
    home.makeFile("root/beside");
    const auto bytes = statusOfPath(item / "big")->allocated + 4 * statusOfPath(item / "a")->allocated;
    letTimePass();

    const Removal done = remove(planned());

    EXPECT_EQ(done, (Removal{true, 9, 3, bytes, 0, 0, false, {}, {}}));
    EXPECT_THAT(home.names("root"), ElementsAre("beside"));
    expectVictimWhole();
}

TEST_F(RemovalTest, removesAFileAndNeverWhatALinkLeadsTo) {
    home.makeFile("root/item", std::string(5000, 'x'));
    letTimePass();
    EXPECT_EQ(remove(planned()).removedBytes, 8192);
    home.makeLink("root/item", victim);
    letTimePass();
    EXPECT_TRUE(remove(planned()).isComplete);
    EXPECT_THAT(home.names("root"), ElementsAre());
    expectVictimWhole();
}

TEST_F(RemovalTest, countsAnEntryAsChangedOnlyBeyondTheTolerance) {
    home.makeFile("root/item");
    RemovalLimits limits = planned();
    const Date changed = statusOfPath(item)->changed;
    limits.changedAfter = changed - microseconds(2000);
    EXPECT_EQ(remove(limits).skippedChanged, 1);
    limits.changedAfter = changed - microseconds(500);
    EXPECT_TRUE(remove(limits).isComplete);
}

TEST_F(RemovalTest, leavesWhatChangedOrCameAndTheFoldersAroundIt) {
    for (const std::string written : {"sub/deep/c", "sub/new"}) {
        makeTree();
        const RemovalLimits limits = planned();
        home.makeFile("root/item/" + written, "written after the preview");
        const Removal done = remove(limits);
        EXPECT_EQ(done.skippedChanged, 1);
        EXPECT_FALSE(done.isComplete);
        EXPECT_EQ(done.firstError, std::nullopt);
        EXPECT_THAT(home.names("root/item"), ElementsAre("sub"));
        EXPECT_EQ(home.read("root/item/" + written), "written after the preview");
        fs::remove_all(item);
    }
}

TEST_F(RemovalTest, takesHardLinksWholeWhoseTimesItChangesItself) {
    makeTree();
    for (const char* twin : {"root/item/twin", "root/item/sub/twin", "root/item/sub/deep/twin"})
        fs::create_hard_link(item / "a", home / twin);
    fs::create_hard_link(item / "z", home / "outside");
    letTimePass();
    const auto each = statusOfPath(item / "a")->allocated;

    const Removal done = remove(planned());

    EXPECT_TRUE(done.isComplete);
    EXPECT_EQ(done.removedFiles, 7);
    EXPECT_EQ(done.removedBytes, 3 * each);  // b, c, and a with its last name
    EXPECT_EQ(home.read("outside"), "content");
}

TEST_F(RemovalTest, leavesAHardLinkThatSomebodyElseChanged) {
    makeTree();
    fs::create_hard_link(item / "a", item / "twin");
    letTimePass();
    RemovalLimits limits = planned();
    int asked = 0;
    limits.shouldStop = [&] {
        // By now one of the two may be gone; the other is changed by a stranger.
        if (++asked > 1) {
            letTimePass();
            for (const char* twin : {"a", "twin"})
                ::chmod((item / twin).c_str(), 0600);
        }
        return false;
    };
    const Removal done = remove(limits);
    EXPECT_GE(done.skippedChanged, 1);
    EXPECT_TRUE(fs::exists(item / "a") || fs::exists(item / "twin"));
}

TEST_F(RemovalTest, removesNothingOfWhatIsNotThePlannedItemInThePlannedFolder) {
    struct Case {
        const char* name;
        std::function<void()> change;
        Replaced replaced;
    };
    const fs::path root = item.parent_path();
    const std::vector<Case> cases{
        {"another folder of that name", [&] { fs::rename(item, home / "away"), makeTree(); }, Replaced::item},
        {"a link to a victim", [&] { fs::rename(item, home / "away"), home.makeLink("root/item", victim); },
         Replaced::item},
        {"a file", [&] { fs::rename(item, home / "away"), home.makeFile("root/item"); }, Replaced::item},
        {"the folder around it a link", [&] { fs::rename(root, home / "away"), home.makeLink("root", home / "away"); },
         Replaced::parent},
        {"another folder around it", [&] { fs::rename(root, home / "away"), makeTree(); }, Replaced::parent},
        {"no folder around it", [&] { fs::rename(root, home / "away"); }, Replaced::parent},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.name);
        makeTree();
        const RemovalLimits limits = planned();
        tested.change();
        Removal nothing;
        nothing.replaced = tested.replaced;
        EXPECT_EQ(remove(limits), nothing);
        EXPECT_TRUE(fs::exists(home / "away/a") || fs::exists(home / "away/item/a"));
        expectVictimWhole();
        for (const char* made : {"away", "root"})
            fs::remove_all(home / made);
    }
}

TEST_F(RemovalTest, stopsWhenAFolderIsMovedAwayWhileItIsEmptied) {
    for (const char* moved : {"sub", "sub/deep"}) {
        SCOPED_TRACE(moved);
        makeTree();
        for (int each = 0; each < 50; ++each)
            home.makeFile("root/item/sub/deep/" + std::to_string(each));
        home.makeFile("victim/0");
        letTimePass();
        RemovalLimits limits = planned();
        bool isMoved = false;
        limits.shouldStop = [&] {
            const auto left = fs::exists(item / "sub/deep") ? home.names("root/item/sub/deep").size() : 99;
            if (isMoved || left > 40) return false;
            isMoved = true;
            fs::rename(item / moved, home / "away");
            fs::create_directory_symlink(victim, item / moved);
            return false;
        };
        const Removal done = remove(limits);
        EXPECT_EQ(done.replaced, Replaced::parent);
        EXPECT_FALSE(done.isComplete);
        const auto names = home.names(std::string(moved) == "sub" ? "away/deep" : "away");
        EXPECT_THAT(names, testing::SizeIs(testing::Ge(39U)));
        expectVictimWhole();
        for (const char* made : {"away", "root"})
            fs::remove_all(home / made);
    }
}

TEST_F(RemovalTest, saysWhatCouldNotBeRemovedAndGoesOn) {
    if (::geteuid() == 0 && ::seteuid(65534) != 0) GTEST_SKIP() << "the superuser may remove everything";
    TemporaryFolder own;
    item = own / "root/item";
    for (const char* file : {"root/item/locked/kept", "root/item/goes", "root/item/empty/x"})
        own.makeFile(file);
    fs::remove(item / "empty/x");
    fs::permissions(item / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(item / "empty", fs::perms::none);
    letTimePass();
    const Removal done = remove(planned());
    EXPECT_EQ(done.firstError, (Removal::Failure{item / "locked/kept", EACCES}));
    EXPECT_EQ(done.removedFiles, 1);
    EXPECT_EQ(done.removedFolders, 1);
    EXPECT_THAT(own.names("root/item"), ElementsAre("locked"));
    (void)::seteuid(0);
}

TEST_F(RemovalTest, goesDownFurtherThanFoldersMayBeOpen) {
    constexpr int levels = 2'000;
    home.makeFolder("root/item");
    int folder = ::open(item.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < levels; ++level) {
        ::close(::openat(folder, "file", O_CREAT | O_WRONLY, 0600));
        ::mkdirat(folder, "a folder with a name of some length", 0700);
        const int next = ::openat(folder, "a folder with a name of some length", O_RDONLY | O_DIRECTORY);
        ::close(folder);
        folder = next;
    }
    ::close(folder);
    letTimePass();
    rlimit usual{};
    ::getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit few{24, usual.rlim_max};
    const RemovalLimits limits = planned();
    ::setrlimit(RLIMIT_NOFILE, &few);
    const Removal done = remove(limits);
    ::setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_TRUE(done.isComplete);
    EXPECT_EQ(done.removedFiles, levels);
    EXPECT_EQ(done.removedFolders, levels + 1);
}

}  // namespace
}  // namespace vostrel
