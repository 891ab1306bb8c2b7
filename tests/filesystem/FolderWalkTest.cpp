#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "filesystem/FolderWalk.h"
#include "support/FakeFolderTree.h"
#include "support/RecordingAccounting.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using test::RecordingAccounting;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;
using Node = FakeFolderTree::Node;

class FolderWalkTest : public testing::Test {
protected:
    FolderWalk::Ending walk(std::size_t maxDepth = 256) {
        return folderWalk.walk("/r", std::nullopt, maxDepth, budget);
    }
    /// What the accounting was told.
    std::vector<std::string> told() const {
        auto lines = tree.journal();
        std::erase_if(lines, [](const std::string& line) {
            constexpr std::string_view calls[] = {"open ", "status ", "read ", "close ", "budget"};
            return std::ranges::any_of(calls, [&](auto call) { return line.starts_with(call); });
        });
        return lines;
    }

    FakeFolderTree tree;
    RecordingAccounting accounting{[this](std::string line) { tree.note(line); }};
    FolderWalk folderWalk{tree, accounting, ListingDetail::sizes, 0};
    int polls = 0;
    int lastPoll = 1'000'000;
    WalkBudget budget{.isCancelled = [this] {
        tree.note("budget");
        return ++polls >= lastPoll;
    }};
};

TEST_F(FolderWalkTest, doesEveryStepInItsOrder) {
    tree.entriesPerRead = 2;
    tree.file("/r/x");
    tree.folder("/r/a/deep");
    tree.link("/r/l");
    tree.folder("/r/left");
    tree.folder("/r/b");
    accounting.leaveOut = [](const std::string& path) { return path == "/r/left" ? 7 : 0; };

    EXPECT_EQ(walk(1), FolderWalk::Ending::finished);
    EXPECT_THAT(tree.journal(),
                ElementsAreArray({
                    "open /r",       "status /r",        "budget",
                    "read /r",       "budget",           "read /r",
                    "budget",        "read /r",          "budget",
                    "read /r",       "close /r",         "listed /r x l",  // closed before any subfolder
                    "decide /r/a",   "budget",           "open /r/a",
                    "status /r/a",   "budget",           "read /r/a",
                    "budget",        "read /r/a",        "close /r/a",
                    "listed /r/a",   "decide /r/a/deep", "tooDeep /r/a/deep",      // asked about, then too deep
                    "finished /r/a", "decide /r/left",   "leftOut /r/left for 7",  // and never opened
                    "decide /r/b",   "budget",           "open /r/b",
                    "status /r/b",   "budget",           "read /r/b",
                    "close /r/b",    "listed /r/b",      "finished /r/b",
                    "finished /r",
                }));
    EXPECT_EQ(folderWalk.peakOpen(), 1);
    EXPECT_EQ(folderWalk.openNow(), 0);
}

TEST_F(FolderWalkTest, comparesTheVolumeBeforeItLists) {
    tree.folder("/r/disk").status.device = 2;
    tree.folder("/r/bound").status.mount = 2;
    walk();
    EXPECT_THAT(told(), ElementsAre("listed /r", "decide /r/disk", "onOtherVolume /r/disk", "decide /r/bound",
                                    "onOtherVolume /r/bound", "finished /r"));
    EXPECT_THAT(tree.journal(), Not(Contains(AnyOf("read /r/disk", "read /r/bound"))));
    EXPECT_EQ(tree.openNow(), 0);

    tree.clearJournal();
    folderWalk.walk("/r", WalkVolume{1, 9}, 256, budget);
    EXPECT_THAT(told(), ElementsAre("onOtherVolume /r"));
}

TEST_F(FolderWalkTest, reportsEachFaultOnceAndGoesOn) {
    // The fault of the folder "/r/a" and after how many entries it comes.
    const std::tuple<int Node::*, int, std::size_t, std::vector<std::string>> rows[] = {
        {&Node::openError, EACCES, 0, {"couldNotOpen /r/a error 13"}},
        {&Node::openError, ENOENT, 0, {}},
        {&Node::openError, ENOTDIR, 0, {}},
        {&Node::statusError, EIO, 0, {"couldNotOpen /r/a error 5"}},
        {&Node::statusError, ENOENT, 0, {}},
        {&Node::listingError, EPERM, 0, {"listed /r/a error 1", "finished /r/a"}},
        {&Node::listingError,
         EIO,
         2,
         {"listed /r/a x error 5", "decide /r/a/in", "listed /r/a/in", "finished /r/a/in", "finished /r/a"}},
    };
    tree.file("/r/a/x");
    tree.folder("/r/a/in");
    tree.file("/r/a/y");
    tree.folder("/r/b");
    for (const auto& [fault, error, entries, toldOfIt] : rows) {
        Node& folder = tree.at("/r/a");
        tree.clearJournal();
        folder.*fault = error;
        folder.entriesBeforeError = entries;
        walk();
        std::vector<std::string> expected{"listed /r", "decide /r/a"};
        expected.insert(expected.end(), toldOfIt.begin(), toldOfIt.end());
        expected.insert(expected.end(), {"decide /r/b", "listed /r/b", "finished /r/b", "finished /r"});
        EXPECT_EQ(told(), expected) << error;
        EXPECT_EQ(tree.openNow(), 0) << error;
        folder.*fault = 0;
    }
}

TEST_F(FolderWalkTest, servesWalkAfterWalkAlsoAfterAStoppedOne) {
    for (const char* path : {"/r/a/b/c", "/r/a/d", "/r/e/f", "/r/g"})
        tree.folder(path);
    walk();
    const auto whole = told();
    const int wholePolls = polls;
    for (lastPoll = 1; lastPoll <= wholePolls; ++lastPoll) {
        tree.clearJournal();
        polls = 0;
        EXPECT_EQ(walk(), FolderWalk::Ending::stopped);
        EXPECT_EQ(polls, lastPoll) << "nothing is asked once it was told to stop";
        EXPECT_EQ(told().back(), "finished /r stopped");
        EXPECT_EQ(tree.openNow(), 0);
        const auto isTold = [lines = told()](const std::string& line) { return std::ranges::count(lines, line) > 0; };
        for (const auto& [path, node] : tree.all()) {
            const bool isKnown = isTold("listed " + path.substr(0, path.rfind('/')));
            const bool isSpokenOf =
                isTold("listed " + path) || isTold("listed " + path + " stopped") || isTold("notReached " + path);
            EXPECT_TRUE(isSpokenOf || !isKnown) << path;
        }
    }
    tree.clearJournal();
    polls = 0;
    EXPECT_EQ(walk(), FolderWalk::Ending::finished);
    EXPECT_EQ(told(), whole);
}

}  // namespace
}  // namespace vostrel
