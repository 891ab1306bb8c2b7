#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <sstream>

#include "filesystem/FolderWalk.h"
#include "support/FakeFolderTree.h"
#include "support/RecordingAccounting.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using test::RecordingAccounting;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

class FolderWalkTest : public testing::Test {
protected:
    FolderWalk::Ending walk(std::size_t maxDepth = 256) {
        return folderWalk.walk("/r", std::nullopt, maxDepth, budget);
    }
    std::vector<std::string> told() const {
        std::vector<std::string> lines;
        for (const auto& line : tree.journal()) {
            if (!std::ranges::any_of(systemCalls, [&](auto call) { return line.starts_with(call); }))
                lines.push_back(line);
        }
        return lines;
    }

    /// Each subfolder that a whole listing brought was listed in its turn, or said not to have been reached.
    void expectNoSubfolderForgotten() {
        std::set<std::string> accountedFor;
        std::set<std::string> listedWhole;
        for (const auto& line : told()) {
            std::istringstream words(line);
            std::string what;
            std::string path;
            words >> what >> path;
            if (what == "listed" || what == "notReached") accountedFor.insert(path);
            if (what == "listed" && !line.ends_with("stopped")) listedWhole.insert(path);
        }
        for (const auto& path : listedWhole) {
            for (const auto& name : tree.at(path).names) {
                const bool isFolder = tree.at(path + "/" + name).status.type == EntryType::folder;
                EXPECT_TRUE(!isFolder || accountedFor.contains(path + "/" + name)) << path << " " << name;
            }
        }
    }

    static constexpr std::string_view systemCalls[] = {"open ", "status ", "read ", "close ", "budget"};

    FakeFolderTree tree;
    RecordingAccounting accounting{[this](std::string line) { tree.note(std::move(line)); }};
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
    EXPECT_THAT(tree.journalOf("read"), Each("/r"));
    EXPECT_EQ(tree.openNow(), 0);

    tree.clearJournal();
    folderWalk.walk("/r", WalkVolume{1, 9}, 256, budget);
    EXPECT_THAT(told(), ElementsAre("onOtherVolume /r"));
}

TEST_F(FolderWalkTest, reportsEachFaultOnceAndGoesOn) {
    struct Row {
        std::string_view fault;
        std::function<void(FakeFolderTree::Node&)> spoil;
        std::vector<std::string> told;
    };
    const Row rows[] = {
        {"open refused", [](auto& node) { node.openError = EACCES; }, {"couldNotOpen /r/a error 13"}},
        {"vanished", [](auto& node) { node.openError = ENOENT; }, {}},
        {"now a file", [](auto& node) { node.openError = ENOTDIR; }, {}},
        {"status fails", [](auto& node) { node.statusError = EIO; }, {"couldNotOpen /r/a error 5"}},
        {"vanished once open", [](auto& node) { node.statusError = ENOENT; }, {}},
        {"listing fails at once",
         [](auto& node) { node.listingFailure = {{EPERM, 0}}; },
         {"listed /r/a error 1", "finished /r/a"}},
        {"listing fails half way",
         [](auto& node) { node.listingFailure = {{EIO, 2}}; },
         {"listed /r/a x error 5", "decide /r/a/in", "listed /r/a/in", "finished /r/a/in", "finished /r/a"}},
    };
    for (const auto& row : rows) {
        FakeFolderTree spoilt;
        std::vector<std::string> lines;
        spoilt.file("/r/a/x");
        spoilt.folder("/r/a/in");
        spoilt.file("/r/a/y");
        spoilt.folder("/r/b");
        row.spoil(spoilt.folder("/r/a"));
        RecordingAccounting recording([&](std::string line) { lines.push_back(std::move(line)); });
        FolderWalk(spoilt, recording, ListingDetail::sizes, 0).walk("/r", std::nullopt, 256, {});

        std::vector<std::string> expected{"listed /r", "decide /r/a"};
        expected.insert(expected.end(), row.told.begin(), row.told.end());
        expected.insert(expected.end(), {"decide /r/b", "listed /r/b", "finished /r/b", "finished /r"});
        EXPECT_EQ(lines, expected) << row.fault;
        EXPECT_EQ(spoilt.openNow(), 0) << row.fault;
    }
}

TEST_F(FolderWalkTest, reportsEveryFaultOfTheRoot) {
    for (const int error : {ENOENT, ENOTDIR, EACCES}) {
        tree.clearJournal();
        tree.folder("/r").openError = error;
        EXPECT_EQ(walk(), FolderWalk::Ending::finished);
        EXPECT_THAT(told(), ElementsAre("couldNotOpen /r error " + std::to_string(error)));
    }
}

TEST_F(FolderWalkTest, servesWalkAfterWalkAlsoAfterAStoppedOne) {
    for (const char* path : {"/r/a/b/c", "/r/a/d", "/r/e/f", "/r/g"})
        tree.file(std::string(path) + "/file");
    walk();
    const auto whole = told();
    const int wholePolls = polls;

    for (lastPoll = 1; lastPoll <= wholePolls; ++lastPoll) {
        tree.clearJournal();
        polls = 0;
        EXPECT_EQ(walk(), FolderWalk::Ending::stopped);
        EXPECT_EQ(polls, lastPoll) << "nothing is asked once it was told to stop";
        EXPECT_EQ(told().back(), "finished /r stopped");
        expectNoSubfolderForgotten();
        EXPECT_EQ(tree.openNow(), 0);
    }
    tree.clearJournal();
    polls = 0;
    EXPECT_EQ(walk(), FolderWalk::Ending::finished);
    EXPECT_EQ(told(), whole);
}

}  // namespace
}  // namespace vostrel
