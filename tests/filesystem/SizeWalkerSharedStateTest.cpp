#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "filesystem/MarkIndex.h"
#include "filesystem/SizeWalker.h"
#include "support/FakeFolderTree.h"
#include "support/RandomTree.h"
#include "support/RecordingAccounting.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using test::closesSome;
using test::FakeFolderTree;
using test::plantRandomTree;
using Node = FakeFolderTree::Node;
using Reason = UnreadableReason;

/// What a walk must come to, by plain recursion over the made-up tree: no engine, no helpers, no notes.
struct PlainWalk {
    FakeFolderTree& tree;
    const SizeWalker& walker;
    MarkIndex marks;
    LinkSet links = {};
    Measured measured = {};

    WalkResult result() {
        const Node& root = tree.at("/r");
        for (const int error : {root.openError, root.statusError}) {
            if (error != 0) return Unreadable{reasonOf(error)};
        }
        measured.totals = sum("/r", 0);
        if (root.listingError != 0) return Unreadable{reasonOf(root.listingError)};
        return measured;
    }

    Reason reasonOf(int error) const { return unreadableReasonOf(error, walker.fullDiskAccess); }

    void skip(const std::string& path, Reason reason) {
        for (const auto& name : marks.atOrBelow(MarkIndex::keyOf(path))) {
            if (!measured.marks.contains(name)) measured.skipped.emplace(name, Unreadable{reason});
        }
    }
    void leaveOut(WalkTotals& totals, const std::string& path, Reason reason) {
        totals.addUnreadable(reason);
        skip(path, reason);
    }
    std::vector<std::string> namesAt(const std::string& path) const {
        const auto* names = marks.at(MarkIndex::keyOf(path));
        return names ? *names : std::vector<std::string>();
    }

    WalkTotals sum(const std::string& path, std::size_t depth) {
        const Node& folder = tree.at(path);
        WalkTotals totals;
        std::vector<std::string> subfolders;
        const auto listed = folder.listingError != 0 ? folder.entriesBeforeError : folder.names.size();
        for (std::size_t index = 0; index < std::min(listed, folder.names.size()); ++index) {
            const std::string child = path + "/" + folder.names[index];
            const Node& node = tree.at(child);
            if (node.entryError != 0) {
                leaveOut(totals, child, reasonOf(node.entryError));
            } else if (node.status.type == EntryType::link) {
                ++totals.linksSkipped;
                for (const auto& name : namesAt(child))
                    measured.skipped.emplace(name, SkippedLink{});
            } else if (node.status.type == EntryType::folder && node.mountStatus != 0) {
                ++totals.otherVolumes;
                skip(child, Reason::otherDisk);
            } else if (node.status.type == EntryType::folder) {
                subfolders.push_back(child);
            } else if (node.status.linkCount < 2 || links.insert({folder.status.device, node.status.inode})) {
                totals.addFile(node.status.allocated);
            }
        }
        if (folder.listingError != 0) totals.addUnreadable(reasonOf(folder.listingError));
        for (const auto& child : subfolders)
            addSubfolder(totals, folder, child, depth + 1);
        for (const auto& name : namesAt(path))
            measured.marks.emplace(name, totals);
        if (folder.listingError != 0) skip(path, reasonOf(folder.listingError));
        return totals;
    }

    void addSubfolder(WalkTotals& totals, const Node& parent, const std::string& child, std::size_t depth) {
        const Node& node = tree.at(child);
        const int error = node.openError != 0 ? node.openError : node.statusError;
        const auto blockedFor = walker.access(child).blockedFor;
        if (blockedFor == Reason::mediaLibrary) {
            ++totals.leftOutLibraries;
            skip(child, *blockedFor);
        } else if (blockedFor) {
            leaveOut(totals, child, *blockedFor);
        } else if (depth > walker.maxDepth) {
            leaveOut(totals, child, Reason::tooDeep);
        } else if (error == ENOENT || error == ENOTDIR) {
            // It vanished between listing and opening.
        } else if (error != 0) {
            leaveOut(totals, child, reasonOf(error));
        } else if (node.status.device != parent.status.device || node.status.mount != parent.status.mount) {
            ++totals.otherVolumes;
            skip(child, Reason::otherDisk);
        } else {
            totals.add(sum(child, depth));
        }
    }
};

AccessDecision opensAll(const std::string&) {
    return {};
}

SizeWalker::Marks randomMarks(const FakeFolderTree& tree, std::mt19937& random) {
    SizeWalker::Marks marks;
    for (const auto& [path, node] : tree.all()) {
        if (random() % 16 == 0) marks[path] = marks[path + "/missing"] = {path, path + " again"};
    }
    return marks;
}

/// Every folder is asked about before it is opened, both happen once at most, and what is closed is not opened.
void expectOrderly(const FakeFolderTree& tree) {
    std::set<std::string> asked;
    std::set<std::string> opened;
    for (const auto& line : tree.journal()) {
        const std::string path = line.substr(line.find(' ') + 1);
        if (line.starts_with("access")) {
            EXPECT_TRUE(asked.insert(path).second) << line;
        } else if (line.starts_with("open")) {
            EXPECT_TRUE(asked.contains(path) && !closesSome(path).blockedFor && opened.insert(path).second) << line;
        }
    }
    EXPECT_EQ(tree.openNow(), 0);
}

TEST(SizeWalkerSharedStateTest, givesTheSameForAnyNumberOfHelpers) {
    for (int round = 0; round < test::rounds(40); ++round) {
        std::mt19937 random(static_cast<unsigned>(round));
        const auto tree = std::make_shared<FakeFolderTree>();
        plantRandomTree(*tree, random, 300);
        SizeWalker walker{.access = closesSome, .fullDiskAccess = round % 2 == 0, .maxDepth = 12, .source = tree};
        const auto marks = round % 4 == 0 ? SizeWalker::Marks() : randomMarks(*tree, random);
        const WalkResult expected = PlainWalk{*tree, walker, MarkIndex(marks)}.result();
        std::vector<std::string> asked;
        std::vector<std::string> lookedUp;
        walker.lookedUp = [&](const std::string& path) { lookedUp.push_back(path); };
        walker.access = [&](const std::string& path) {
            tree->note("access " + path);
            asked.push_back(path);
            return closesSome(path);
        };
        for (const unsigned helpers : {0U, 1U, 4U}) {
            tree->clearJournal();
            walker.helpers = helpers;
            LinkSet links;
            EXPECT_EQ(walker.walk("/r", marks, {}, links), expected) << "round " << round << ", " << helpers;
            expectOrderly(*tree);
            EXPECT_EQ(lookedUp, asked);
            EXPECT_LE(tree->mostOpen(), 1 + helpers);
        }
    }
}

/// Folders of some depth, enough of them that helpers have much to do.
void plantManyFolders(FakeFolderTree& tree) {
    for (int outer = 0; outer < 60; ++outer) {
        for (int inner = 0; inner < 8; ++inner)
            tree.file("/r/" + std::to_string(outer) + "/" + std::to_string(inner) + "/x");
    }
}

TEST(SizeWalkerSharedStateTest, stopsAtAnyMomentAndWalksRightAgain) {
    FakeFolderTree tree;
    plantManyFolders(tree);
    std::vector<std::string> told;
    test::RecordingAccounting accounting([&](std::string line) {
        if (!line.starts_with("decide")) told.push_back(std::move(line));  // these may come ahead
    });
    FolderWalk folderWalk(tree, accounting, ListingDetail::sizes, 3);
    const std::thread::id walking = std::this_thread::get_id();
    const auto walk = [&](int lastPoll) {
        told.clear();
        const WalkBudget budget{.isCancelled = [&, polls = 0]() mutable {
            EXPECT_EQ(std::this_thread::get_id(), walking);
            return ++polls >= lastPoll;
        }};
        return folderWalk.walk("/r", std::nullopt, 256, budget);
    };
    EXPECT_EQ(walk(1'000'000), FolderWalk::Ending::finished);
    const auto whole = told;
    for (int lastPoll = 1; lastPoll < 300; lastPoll += 1 + 40 / test::rounds(1)) {
        EXPECT_EQ(walk(lastPoll), FolderWalk::Ending::stopped);
        EXPECT_EQ(tree.openNow(), 0) << "no helper goes on after the walk";
        EXPECT_EQ(walk(1'000'000), FolderWalk::Ending::finished);
        EXPECT_EQ(told, whole);
    }
}

TEST(SizeWalkerSharedStateTest, seesThatItIsCancelledWhileHelpersHang) {
    const std::thread::id walking = std::this_thread::get_id();
    for (const std::string call : {"open /r/40", "read /r/41/3", "open /r/59/7", "read /r/59/7"}) {
        const auto tree = std::make_shared<FakeFolderTree>();
        plantManyFolders(*tree);
        std::atomic<bool> isCancelled = false;
        std::atomic<bool> isSeen = false;
        tree->onLine = [&](const std::string& line) {
            if (line != call) return;
            const bool isHelper = std::this_thread::get_id() != walking;
            if (isHelper) std::this_thread::sleep_for(50ms);  // until nothing is left to list but this
            isCancelled = true;
            if (isHelper) isSeen.wait(false);
        };
        const WalkBudget budget{.isCancelled = [&] {
            isSeen = isCancelled.load();
            isSeen.notify_all();
            return isSeen.load();
        }};
        const SizeWalker walker{.access = opensAll, .helpers = 4, .source = tree};
        LinkSet links;
        EXPECT_TRUE(std::get<Measured>(walker.walk("/r", {}, budget, links)).totals.stopped);
        EXPECT_EQ(tree->openNow(), 0);
    }
}

TEST(SizeWalkerSharedStateTest, countsALinkedFileOnceForWalksOnSeveralThreads) {
    const auto tree = std::make_shared<FakeFolderTree>();
    for (int file = 0; file < 200; ++file) {
        const std::string name = "/" + std::to_string(file);
        tree->file("/r/a" + name);
        tree->hardLink("/r/b" + name, "/r/a" + name);
    }
    const SizeWalker walker{.access = opensAll, .helpers = 1, .source = tree};
    LinkSet links;
    std::atomic<std::int64_t> files = 0;
    const auto walk = [&] { files += std::get<Measured>(walker.walk("/r", {}, {}, links)).totals.files; };
    {
        const std::jthread threads[] = {std::jthread(walk), std::jthread(walk), std::jthread(walk), std::jthread(walk)};
    }
    EXPECT_EQ(files, 200);
}

}  // namespace
}  // namespace vostrel
