#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

#include "filesystem/SizeWalker.h"
#include "support/FakeFolderTree.h"
#include "support/PrintTotals.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using Node = FakeFolderTree::Node;
using Reason = UnreadableReason;

/// A walker over a made-up tree below "/r", on one thread.
class SizeWalkerTest : public testing::Test {
protected:
    WalkResult walk(const std::string& root = "/r") { return walker.walk(root, marks, budget, links); }
    Measured measured() {
        const auto result = walk();
        EXPECT_TRUE(std::holds_alternative<Measured>(result));
        return std::get<Measured>(result);
    }
    void startAnew() {
        tree = std::make_shared<FakeFolderTree>();
        walker.source = tree;
        blocked.clear();
    }

    std::shared_ptr<FakeFolderTree> tree = std::make_shared<FakeFolderTree>();
    std::map<std::string, Reason> blocked;
    SizeWalker walker{.access =
                          [this](const std::string& path) {
                              tree->note("access " + path);
                              const auto found = blocked.find(path);
                              return found == blocked.end() ? AccessDecision{} : AccessDecision{found->second};
                          },
                      .helpers = 0,
                      .source = tree};
    SizeWalker::Marks marks;
    WalkBudget budget;
    LinkSet links;
};

/// The totals of so many files of one block each.
WalkTotals totalsOf(std::int64_t files) {
    WalkTotals totals;
    totals.files = files;
    totals.allocatedBytes = files * 4096;
    return totals;
}

WalkTotals totalsOf(std::int64_t files, std::int64_t unreadable, Reason reason) {
    WalkTotals totals = totalsOf(files);
    totals.unreadableFolders = unreadable;
    totals.unreadableReason = reason;
    return totals;
}

TEST_F(SizeWalkerTest, countsEverythingButFoldersAndLinks) {
    constexpr EntryType counted[] = {EntryType::file,        EntryType::socket,          EntryType::fifo,
                                     EntryType::blockDevice, EntryType::characterDevice, EntryType::none};
    for (const EntryType type : counted)
        tree->file("/r/a/" + std::to_string(static_cast<int>(type))).status.type = type;
    tree->link("/r/a/link").status.allocated = 4096;
    tree->folder("/r/a/b").status.allocated = 4096;

    WalkTotals expected = totalsOf(std::size(counted));
    expected.linksSkipped = 1;
    EXPECT_EQ(measured().totals, expected);
    EXPECT_TRUE(expected.isComplete());
}

TEST_F(SizeWalkerTest, asksBeforeAnythingIsOpenedAndTellsWhatItAsked) {
    walker.lookedUp = [this](const std::string& path) { tree->note("lookedUp " + path); };
    tree->folder("/r/a/b");
    tree->file("/r/closed/x");
    blocked["/r/closed"] = Reason::systemPlace;
    EXPECT_EQ(measured().totals, totalsOf(0, 1, Reason::systemPlace));
    EXPECT_THAT(tree->journalOf("access"), ElementsAre("/r", "/r/a", "/r/a/b", "/r/closed"));
    EXPECT_EQ(tree->journalOf("lookedUp"), tree->journalOf("access"));
    EXPECT_THAT(tree->journalOf("open"), ElementsAre("/r", "/r/a", "/r/a/b"));
}

TEST_F(SizeWalkerTest, goesDownToTheDepthLimitAndNotBelow) {
    std::string path = "/r";
    for (std::size_t depth = 1; depth <= SizeWalker::usualMaxDepth; ++depth)
        tree->file((path += "/d") + "/file");
    EXPECT_EQ(measured().totals, totalsOf(256));
    tree->file(path + "/d/file");
    tree->file(path + "/e/file");
    EXPECT_EQ(measured().totals, totalsOf(256, 2, Reason::tooDeep));
    EXPECT_THAT(tree->journalOf("open"), Not(Contains(path + "/d")));
    walker.maxDepth = 257;
    EXPECT_EQ(measured().totals, totalsOf(258));
    EXPECT_EQ(tree->mostOpen(), 1);
}

TEST_F(SizeWalkerTest, saysWhyAFolderOrAnEntryCouldNotBeRead) {
    const std::tuple<int, bool, Reason> reasons[] = {
        {EACCES, false, Reason::noPermission},       {EACCES, true, Reason::noPermission},
        {EPERM, false, Reason::needsFullDiskAccess}, {EPERM, true, Reason::couldNotRead},
        {EIO, false, Reason::couldNotRead},          {EDEADLK, true, Reason::couldNotRead},
    };
    // How the folder "/r/a" of two files fails, and how many of its files count in spite of it.
    const std::pair<void (*)(Node&, int), std::int64_t> faults[] = {
        {[](Node& node, int error) { node.entryError = error; }, 0},
        {[](Node& node, int error) { node.openError = error; }, 0},
        {[](Node& node, int error) { node.statusError = error; }, 0},
        {[](Node& node, int error) { node.listingFailure = {{error, 1}}; }, 1},
    };
    for (const auto& [error, fullDiskAccess, reason] : reasons) {
        for (const auto& [spoil, counted] : faults) {
            startAnew();
            walker.fullDiskAccess = fullDiskAccess;
            tree->file("/r/a/1");
            tree->file("/r/a/2");
            tree->file("/r/b/3");
            spoil(tree->at("/r/a"), error);
            EXPECT_EQ(measured().totals, totalsOf(1 + counted, 1, reason)) << error;

            spoil(tree->at("/r"), error);
            const bool isRootSpoilt = tree->at("/r").entryError == 0;
            EXPECT_EQ(walk() == WalkResult(Unreadable{reason}), isRootSpoilt) << error;
        }
    }
}

TEST_F(SizeWalkerTest, keepsTheFirstReasonInTheWalksOrder) {
    tree->folder("/r/a/in").openError = EPERM;
    tree->file("/r/a/x").entryError = EACCES;  // met while "a" is listed, before "in" is entered
    tree->folder("/r/b").openError = EIO;
    EXPECT_EQ(measured().totals, totalsOf(0, 3, Reason::noPermission));
    tree->at("/r/a").listingFailure = {{EIO, 1}};  // "in" alone is known; its folder failed before it did
    EXPECT_EQ(measured().totals, totalsOf(0, 3, Reason::couldNotRead));
}

TEST_F(SizeWalkerTest, staysOnTheVolume) {
    tree->file("/r/mounted/x");
    tree->at("/r/mounted").mountStatus = entryIsMountPoint;
    tree->file("/r/trigger/x");
    tree->at("/r/trigger").mountStatus = entryTriggersMount;
    tree->file("/r/disk/x");
    tree->at("/r/disk").status.device = 2;
    tree->file("/r/bound/x");
    tree->at("/r/bound").status.mount = 2;
    WalkTotals expected;
    expected.otherVolumes = 4;
    EXPECT_EQ(measured().totals, expected);
    EXPECT_TRUE(expected.isComplete());
    EXPECT_THAT(tree->journalOf("open"), ElementsAre("/r", "/r/disk", "/r/bound"));
    EXPECT_THAT(tree->journalOf("read"), ElementsAre("/r", "/r", "/r"));
}

TEST_F(SizeWalkerTest, leavesMediaLibrariesOutWithoutCallingTheTotalsIncomplete) {
    tree->file("/r/Music/x");
    tree->file("/r/y");
    blocked["/r/Music"] = Reason::mediaLibrary;
    WalkTotals expected = totalsOf(1);
    expected.leftOutLibraries = 1;
    EXPECT_EQ(measured().totals, expected);
    EXPECT_TRUE(expected.isComplete());
}

TEST_F(SizeWalkerTest, forgetsWhatVanishesBetweenListingAndOpening) {
    tree->folder("/r/gone").openError = ENOENT;
    tree->folder("/r/replaced").openError = ENOTDIR;
    tree->file("/r/x");
    EXPECT_EQ(measured().totals, totalsOf(1));
}

TEST_F(SizeWalkerTest, measuresMarksAndSaysWhyItCouldNot) {
    const std::pair<const char*, std::variant<std::monostate, WalkTotals, Unreadable, SkippedLink>> rows[] = {
        {"/R", totalsOf(7, 6, Reason::systemPlace)},
        {"/r/A", totalsOf(2)},
        {"/r//a/b/", totalsOf(1)},
        {"/r/cafe\u0301", totalsOf(1)},
        {"/r/STRASSE", totalsOf(1)},
        {"/r/\xFFraw", totalsOf(1)},
        {"/r/link", SkippedLink{}},
        {"/r/link/below", std::monostate()},
        {"/r/closed", Unreadable{Reason::systemPlace}},
        {"/r/closed/deep/down", Unreadable{Reason::systemPlace}},
        {"/r/closed.too", totalsOf(1)},
        {"/r/music/below", Unreadable{Reason::mediaLibrary}},
        {"/r/refused/below", Unreadable{Reason::needsFullDiskAccess}},
        {"/r/mounted", Unreadable{Reason::otherDisk}},
        {"/r/disk/below", Unreadable{Reason::otherDisk}},
        {"/r/broken/below", Unreadable{Reason::noPermission}},
        {"/r/gone", std::monostate()},
        {"/r/absent", std::monostate()},
        {"/r/half", totalsOf(1, 1, Reason::couldNotRead)},
        {"/r/half/seen", totalsOf(1)},
        {"/r/half/unseen", Unreadable{Reason::couldNotRead}},
        {"/r/deep/1/2", Unreadable{Reason::tooDeep}},
        {"/r/deep/1/2/3", Unreadable{Reason::tooDeep}},
        {"/elsewhere", std::monostate()},
    };
    for (const char* file : {"a/x", "a/b/x", "Caf\u00E9/x", "stra\u00DFe/x", "\xFFraw/x", "closed/x", "closed.too/x",
                             "Music/x", "half/seen/x", "half/unseen/x", "deep/1/2/x"})
        tree->file(std::string("/r/") + file);
    tree->link("/r/Link");
    blocked = {{"/r/closed", Reason::systemPlace}, {"/r/Music", Reason::mediaLibrary}};
    tree->folder("/r/refused").openError = EPERM;
    tree->folder("/r/mounted").mountStatus = entryIsMountPoint;
    tree->folder("/r/disk").status.device = 2;
    tree->folder("/r/broken").entryError = EACCES;
    tree->folder("/r/gone").openError = ENOENT;
    tree->at("/r/half").listingFailure = {{EIO, 1}};
    walker.maxDepth = 2;

    std::map<std::string, WalkTotals> measuredMarks;
    decltype(Measured::skipped) skippedMarks;
    for (const auto& [path, expected] : rows) {
        marks[path] = {path, std::string(path) + " again"};
        for (const auto& name : marks[path]) {
            if (const auto* totals = std::get_if<WalkTotals>(&expected)) measuredMarks[name] = *totals;
            if (const auto* reason = std::get_if<Unreadable>(&expected)) skippedMarks[name] = *reason;
            if (std::holds_alternative<SkippedLink>(expected)) skippedMarks[name] = SkippedLink{};
        }
    }
    auto& root = measuredMarks["/R"];
    root.unreadableReason = Reason::noPermission;  // an entry of its own listing comes before every subfolder
    root.unreadableFolders = 5;
    root.linksSkipped = root.leftOutLibraries = 1;
    root.otherVolumes = 2;
    measuredMarks["/R again"] = root;

    const Measured result = measured();
    EXPECT_EQ(result.totals, root);
    EXPECT_EQ(result.marks, measuredMarks);
    EXPECT_EQ(result.skipped, skippedMarks);
}

TEST_F(SizeWalkerTest, countsAFileWithManyNamesOnce) {
    tree->file("/r/a/1");
    tree->hardLink("/r/b/2", "/r/a/1");
    tree->hardLink("/other/3", "/r/a/1");
    tree->file("/other/4");
    EXPECT_EQ(measured().totals, totalsOf(1));
    EXPECT_EQ(std::get<Measured>(walk("/other")).totals, totalsOf(1)) << "\"3\" was counted in the first place";
    EXPECT_EQ(std::get<Measured>(walk("/other/3")).totals, totalsOf(0));

    LinkSet fresh;
    EXPECT_EQ(std::get<Measured>(walker.walk("/other", {}, {}, fresh)).totals, totalsOf(2));

    LinkSet shared;
    tree->hardLink("/r/0", "/r/a/1");
    tree->at("/r").listingFailure = {EIO, 3};
    EXPECT_EQ(walker.walk("/r", {}, {}, shared), WalkResult(Unreadable{Reason::couldNotRead}));
    EXPECT_EQ(std::get<Measured>(walker.walk("/other", {}, {}, shared)).totals, totalsOf(2))
        << "a place without a sum has counted nothing";
}

TEST_F(SizeWalkerTest, tellsWhatTheRootIs) {
    tree->link("/link");
    tree->file("/file");
    tree->folder("/refused").lookUpError = EPERM;
    tree->folder("/closed");
    tree->file("/closed file");
    blocked = {{"/closed", Reason::otherHome}, {"/closed file", Reason::systemPlace}};
    tree->folder("/unopened").openError = EACCES;
    tree->file("/real/x");
    tree->alias("/way/real", "/real");
    const std::pair<const char*, WalkResult> rows[] = {
        {"/link", SkippedLink{}},
        {"/nothing", Missing{}},
        {"/file/below", Missing{}},
        {"/refused", Unreadable{Reason::needsFullDiskAccess}},
        {"/closed", Unreadable{Reason::otherHome}},
        {"/closed file", Unreadable{Reason::systemPlace}},
        {"/unopened", Unreadable{Reason::noPermission}},
        {"/file", Measured{totalsOf(1), {}, {}}},
        {"/way/real", Measured{totalsOf(1), {{"here", totalsOf(1)}}, {}}},
    };
    marks["/way/real"] = {"here"};
    for (const auto& [root, expected] : rows) {
        tree->clearJournal();
        EXPECT_EQ(walk(root), expected) << root;
        const bool isOpened = root == std::string("/unopened") || root == std::string("/way/real");
        EXPECT_EQ(tree->journalOf("open").size(), isOpened ? 1 : 0) << root;
    }
}

TEST_F(SizeWalkerTest, keepsWhatItCountedWhenTheBudgetRunsOut) {
    for (const char* file : {"1", "a/2", "a/3", "a/b/4", "c/5", "c/d/6", "c/d/7", "e/8"})
        tree->file(std::string("/r/") + file);
    tree->entriesPerRead = 1;
    marks["/r/a"] = {"a"};
    const WalkTotals whole = measured().totals;
    EXPECT_EQ(whole, totalsOf(8));

    std::int64_t filesBefore = 0;
    bool isStopped = true;
    for (int limit = 1; isStopped; ++limit) {
        int polls = 0;
        budget = {.isCancelled = [&] { return ++polls == limit; }};
        const Measured cancelled = measured();
        isStopped = cancelled.totals.stopped;
        EXPECT_EQ(polls, isStopped ? limit : limit - 1);
        EXPECT_EQ(cancelled.totals.isComplete(), !isStopped);
        EXPECT_GE(cancelled.totals.files, filesBefore);
        filesBefore = cancelled.totals.files;
        if (cancelled.totals.files > 4) {
            EXPECT_EQ(cancelled.marks.at("a"), totalsOf(3)) << "finished in time";
        }

        std::int64_t seconds = 0;
        budget = {Date::fromSeconds(limit - 1), {}, [&] { return Date::fromSeconds(++seconds); }};
        EXPECT_EQ(measured(), cancelled) << "a deadline stops as a cancellation does";
    }
    EXPECT_EQ(filesBefore, 8);
}

TEST_F(SizeWalkerTest, endsTheProcessRatherThanReportASumThatIsNotTrue) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    tree->file("/r/a/1", most);
    EXPECT_EQ(measured().totals.allocatedBytes, most);
    tree->file("/r/b/2", 512);
    EXPECT_DEATH((void)walk(), "the size of a folder does not fit");
    tree->file("/r/a/3", 512);
    EXPECT_DEATH((void)walk(), "the size of a folder does not fit");
}

}  // namespace
}  // namespace vostrel
