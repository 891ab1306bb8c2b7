#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "filesystem/FolderWalk.h"
#include "support/FakeFolderTree.h"
#include "support/RecordingAccounting.h"

namespace vostrel {
namespace {

using testing::ElementsAreArray;

/// A walk on one thread. What faults come to is checked with several threads, on random trees.
class FolderWalkTest : public testing::Test {
protected:
    FolderWalk::Ending walk(std::size_t maxDepth = 256, std::optional<WalkVolume> volume = {}) {
        tree.clearJournal();
        polls = 0;
        return folderWalk.walk("/r", volume, maxDepth, budget);
    }

    test::FakeFolderTree tree;
    test::RecordingAccounting accounting{[this](const std::string& line) { tree.note(line); }};
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
    tree.folder("/r/b").status.device = 2;
    tree.folder("/r/gone").openError = ENOENT;
    accounting.leaveOut = [](const std::string& path) { return path == "/r/left" ? 7 : 0; };

    EXPECT_EQ(walk(1), FolderWalk::Ending::finished);
    EXPECT_THAT(tree.journal(),
                ElementsAreArray({
                    "open /r",        "status /r",        "budget",
                    "read /r",        "budget",           "read /r",
                    "budget",         "read /r",          "budget",
                    "read /r",        "close /r",         "listed /r x l",  // closed before any subfolder
                    "decide /r/a",    "budget",           "open /r/a",
                    "status /r/a",    "budget",           "read /r/a",
                    "budget",         "read /r/a",        "close /r/a",
                    "listed /r/a",    "decide /r/a/deep", "tooDeep /r/a/deep",      // asked about, then too deep
                    "finished /r/a",  "decide /r/left",   "leftOut /r/left for 7",  // and never opened
                    "decide /r/b",    "budget",           "open /r/b",
                    "status /r/b",    "close /r/b",       "onOtherVolume /r/b",  // and never read
                    "decide /r/gone", "budget",           "open /r/gone",        // and not spoken of
                    "finished /r",
                }));
    EXPECT_EQ(folderWalk.peakOpen(), 1);
    EXPECT_EQ(folderWalk.openNow(), 0);

    walk(1, WalkVolume{1, 9});
    EXPECT_THAT(tree.journal(), ElementsAreArray({"open /r", "status /r", "close /r", "onOtherVolume /r"}));
}

TEST_F(FolderWalkTest, servesWalkAfterWalkAlsoAfterAStoppedOne) {
    for (const char* path : {"/r/a/b/c", "/r/a/d", "/r/e/f", "/r/g"})
        tree.folder(path);
    walk();
    const auto whole = tree.journal();
    const int wholePolls = polls;
    for (lastPoll = 1; lastPoll <= wholePolls; ++lastPoll) {
        EXPECT_EQ(walk(), FolderWalk::Ending::stopped);
        EXPECT_EQ(polls, lastPoll) << "nothing is asked once it was told to stop";
        EXPECT_EQ(tree.openNow(), 0);
        const auto told = tree.journal();
        EXPECT_EQ(told.back(), "finished /r stopped");
        const auto isTold = [&](const std::string& line) { return std::ranges::count(told, line) > 0; };
        for (const auto& [path, node] : tree.all()) {
            const bool isKnown = isTold("listed " + path.substr(0, path.rfind('/')));
            const bool isSpokenOf =
                isTold("listed " + path) || isTold("listed " + path + " stopped") || isTold("notReached " + path);
            EXPECT_TRUE(isSpokenOf || !isKnown) << path;
        }
    }
    EXPECT_EQ(walk(), FolderWalk::Ending::finished);
    EXPECT_EQ(tree.journal(), whole);
}

}  // namespace
}  // namespace vostrel
