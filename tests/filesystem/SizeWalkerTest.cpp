#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

#include "filesystem/SizeWalker.h"
#include "support/FakeFolderTree.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using Reason = UnreadableReason;

/// A walker over a made-up tree, on one thread. What any tree must come to is checked with several threads, on random
/// ones.
class SizeWalkerTest : public testing::Test {
protected:
    WalkResult walk(const std::string& root = "/r") { return walker.walk(root, marks, budget, links); }
    Measured measured(const std::string& root = "/r") { return std::get<Measured>(walk(root)); }

    std::shared_ptr<FakeFolderTree> tree = std::make_shared<FakeFolderTree>();
    std::map<std::string, AccessDecision> decisions;
    SizeWalker walker{
        .access = [this](const std::string& path) { return decisions[path]; }, .helpers = 0, .source = tree};
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

TEST_F(SizeWalkerTest, meetsMarksHoweverTheyAreSpelled) {
    for (const char* file :
         {"a/x", "a/b/x", "Caf\u00E9/x", "stra\u00DFe/x", "\xFFraw/x", "Closed/x", "closed.too/x", "Music/x"})
        tree->file(std::string("/r/") + file);
    tree->link("/r/Link");
    decisions = {{"/r/Closed", {Reason::systemPlace}}, {"/r/Music", {Reason::mediaLibrary}}};
    marks = {{"/R", {"root"}},      {"/r/A", {"a", "also a"}}, {"/r//a/b/", {"b"}},      {"/r/cafe\u0301", {"c"}},
             {"/r/STRASSE", {"d"}}, {"/r/\xFFraw", {"e"}},     {"/r/closed.too", {"f"}}, {"/r/closed/deep", {"g", "h"}},
             {"/r/link", {"i"}},    {"/r/music/below", {"j"}}, {"/r/link/below", {"k"}}, {"/elsewhere", {"l"}}};
    WalkTotals root = totalsOf(6);
    root.addUnreadable(Reason::systemPlace);
    root.linksSkipped = root.leftOutLibraries = 1;
    Measured expected{
        .totals = root, .marks = {{"root", root}, {"a", totalsOf(2)}, {"also a", totalsOf(2)}}, .skipped = {}};
    for (const char* mark : {"b", "c", "d", "e", "f"})
        expected.marks[mark] = totalsOf(1);
    expected.skipped = {{"g", Unreadable{Reason::systemPlace}},
                        {"h", Unreadable{Reason::systemPlace}},
                        {"i", SkippedLink{}},
                        {"j", Unreadable{Reason::mediaLibrary}}};
    EXPECT_EQ(measured(), expected);
}

TEST_F(SizeWalkerTest, countsNothingOfAPlaceWithoutASum) {
    tree->file("/r/a/1");
    tree->hardLink("/other/3", "/r/a/1");
    tree->file("/other/4");
    LinkSet shared;
    tree->hardLink("/r/0", "/r/a/1");
    tree->at("/r").listingError = EIO;
    tree->at("/r").entriesBeforeError = 3;
    EXPECT_EQ(walker.walk("/r", {}, {}, shared), WalkResult(Unreadable{Reason::couldNotRead}));
    EXPECT_EQ(std::get<Measured>(walker.walk("/other", {}, {}, shared)).totals, totalsOf(2));
}

TEST_F(SizeWalkerTest, tellsWhatTheRootIs) {
    tree->link("/link");
    tree->file("/file");
    tree->file("/file/below").lookUpError = ENOTDIR;
    tree->folder("/refused").lookUpError = EPERM;
    tree->folder("/closed");
    tree->file("/closed file");
    decisions = {{"/closed", {Reason::otherHome}}, {"/closed file", {Reason::systemPlace}}};
    tree->folder("/unopened").openError = EACCES;
    tree->file("/real/x");
    tree->alias("/way/real", "/real");
    marks["/way/real"] = {"here"};
    const std::tuple<const char*, WalkResult, bool> rows[] = {
        {"/link", SkippedLink{}, false},
        {"/nothing", Missing{}, false},
        {"/file/below", Missing{}, false},
        {"/refused", Unreadable{Reason::needsFullDiskAccess}, false},
        {"/closed", Unreadable{Reason::otherHome}, false},
        {"/closed file", Unreadable{Reason::systemPlace}, false},
        {"/unopened", Unreadable{Reason::noPermission}, true},
        {"/file", Measured{totalsOf(1), {}, {}}, false},
        {"/way/real", Measured{totalsOf(1), {{"here", totalsOf(1)}}, {}}, true},
    };
    for (const auto& [root, expected, isOpened] : rows) {
        tree->clearJournal();
        EXPECT_EQ(walk(root), expected) << root;
        EXPECT_EQ(tree->journal().empty(), !isOpened) << root;
    }
}

TEST_F(SizeWalkerTest, keepsWhatItCountedWhenTheBudgetRunsOut) {
    for (const char* file : {"1", "a/2", "a/3", "a/b/4", "c/5", "c/d/6", "c/d/7", "e/8"})
        tree->file(std::string("/r/") + file);
    tree->entriesPerRead = 1;
    marks["/r/a"] = {"a"};
    std::int64_t filesBefore = 0;
    bool isStopped = true;
    for (int limit = 1; isStopped; ++limit) {
        int polls = 0;
        budget = {.isCancelled = [&] { return ++polls == limit; }};
        const Measured cancelled = measured();
        isStopped = cancelled.totals.stopped;
        EXPECT_EQ(polls, isStopped ? limit : limit - 1) << "nothing is asked once it was told to stop";
        EXPECT_EQ(cancelled.totals.isComplete(), !isStopped);
        EXPECT_GE(cancelled.totals.files, filesBefore);
        filesBefore = cancelled.totals.files;
        EXPECT_TRUE(filesBefore <= 4 || cancelled.marks.at("a") == totalsOf(3)) << "finished in time";

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
