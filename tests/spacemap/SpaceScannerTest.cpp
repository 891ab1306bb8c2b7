#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "spacemap/SpaceScanner.h"
#include "spacemap/SpaceTreeBuilder.h"
#include "support/FakeFolderTree.h"

namespace vostrel {
namespace {

using test::FakeFolderTree;
using testing::ElementsAre;
using Ending = SpaceTree::Ending;
using Kind = SpaceNode::Kind;

class SpaceScannerTest : public testing::Test {
protected:
    SpaceScannerTest() {
        scanner.walker.access = [this](const std::string& path) { return decisions[path]; };
        scanner.walker.helpers = 0;
        scanner.walker.source = tree;
    }

    SpaceTree scan(const std::string& root = "/r") {
        LinkSet links;
        SpaceTree map = scanner.scan(root, "Map", {}, &progress, links, Date::fromSeconds(5));
        EXPECT_THAT(map.invariantProblems(), testing::IsEmpty());
        return map;
    }
    /// The children of a node: "name bytes", an aggregate "+entries bytes", a marker "name: reason".
    static std::vector<std::string> shown(const SpaceTree& map, SpaceTree::Index index = 0) {
        std::vector<std::string> texts;
        for (const auto child : map.children(index)) {
            const SpaceNode& node = map.at(child);
            const bool isAggregate = node.kind == Kind::aggregate;
            const std::string name = isAggregate ? "+" + std::to_string(node.entries) : node.name;
            texts.push_back(node.isMarker() ? name + ": " + std::string(shownText(*node.unreadable))
                                            : name + " " + std::to_string(node.bytes));
        }
        return texts;
    }

    std::shared_ptr<FakeFolderTree> tree = std::make_shared<FakeFolderTree>();
    std::map<std::string, AccessDecision> decisions;
    SpaceScanner scanner;
    ScanProgressBox progress;
};

TEST_F(SpaceScannerTest, saysWhatIsWrongWithARoot) {
    tree->link("/link");
    tree->file("/file");
    tree->folder("/closed");
    tree->folder("/denied").openError = EACCES;
    tree->folder("/broken").listingError = EIO;
    decisions["/closed"] = {UnreadableReason::otherHome};
    const std::pair<const char*, SpaceTree::RootProblem> cases[] = {
        {"/link", SkippedLink{}},
        {"/none", Missing{}},
        {"/file", NotAFolder{}},
        {"/closed", Unreadable{UnreadableReason::otherHome}},
        {"/denied", Unreadable{UnreadableReason::noPermission}},
        {"/broken", Unreadable{UnreadableReason::couldNotRead}}};
    for (const auto& [path, problem] : cases) {
        const SpaceTree map = scan(path);
        EXPECT_EQ(map.problem, problem) << path;
        EXPECT_EQ(map.nodes.size(), 1);
        EXPECT_EQ(map.root().name, "Map");
        EXPECT_EQ(map.rootPath, path);
        EXPECT_EQ(map.root().isMarker(), std::holds_alternative<Unreadable>(problem));
        EXPECT_FALSE(map.isFinished());
    }
}

TEST_F(SpaceScannerTest, showsTheLargeFileAndOneNodeForAHundredThousandSmallOnes) {
    tree->entriesPerRead = 1'000;
    for (int number = 0; number < 100'000; ++number)
        tree->file("/r/notes" + std::to_string(number), 4'096);
    tree->file("/r/film", 10'000'000'000);
    for (const std::size_t transientNodes : {240'000U, 1'000U, 20U}) {
        scanner.limits.transientNodes = transientNodes;
        EXPECT_THAT(shown(scan()), ElementsAre("film 10000000000", "+100000 409600000")) << transientNodes;
    }
    EXPECT_EQ(progress.read().files, 100'001);
    EXPECT_EQ(progress.read().bytes, 10'409'600'000);
}

TEST_F(SpaceScannerTest, choosesAmongEqualSizesByName) {
    for (const char* name : {"d", "B", "a", "C", "e"})
        tree->file(std::string("/r/") + name, 4'096);
    scanner.limits.maxChildren = 2;
    EXPECT_THAT(shown(scan()), ElementsAre("a 4096", "B 4096", "+3 12288"));
    tree->file("/r/f", 8'192);
    EXPECT_THAT(shown(scan()), ElementsAre("f 8192", "a 4096", "+4 16384"));
    tree->file("/r/g", 80'000);
    EXPECT_THAT(shown(scan()), ElementsAre("g 80000", "f 8192", "+5 20480"));
    scanner.limits.maxChildren = 3;
    EXPECT_THAT(shown(scan()), ElementsAre("g 80000", "f 8192", "+5 20480")) << "not one of five";
}

TEST_F(SpaceScannerTest, marksWhatItDoesNotMeasure) {
    tree->file("/r/a", 4'096).entryError = EACCES;
    tree->folder("/r/disk").status.device = 2;
    tree->folder("/r/mount").mountStatus = entryIsMountPoint;
    tree->file("/r/share/x");
    tree->file("/r/closed/x");
    tree->file("/r/Music/x");
    tree->folder("/r/half").listingError = EIO;
    tree->file("/r/deep/1/2/x", 512);
    decisions["/r/closed"] = {UnreadableReason::otherHome};
    decisions["/r/Music"] = {UnreadableReason::mediaLibrary};
    scanner.volumeRoots = {"/r/share"};
    scanner.walker.maxDepth = 3;
    const SpaceTree map = scan();
    EXPECT_THAT(shown(map),
                ElementsAre("deep 512", "a: No permission to read it", "closed: Another account's folder, not measured",
                            "disk: On another disk, not measured", "half: Could not be read",
                            "mount: On another disk, not measured",
                            "Music: Not measured: Vostrel does not open the Music and TV libraries",
                            "share: On another disk, not measured"));
    EXPECT_EQ(map.root().unreadableCount, 3) << "another disk is no part of this one";
    EXPECT_EQ(map.root().notMeasuredCount, 1);
    EXPECT_EQ(map.root().couldNotReadCount(), 2);
    EXPECT_EQ(map.root().leftOutLibraries, 1);
    EXPECT_EQ(progress.read().unreadable, 3);
    for (const auto& line : tree->journal())
        EXPECT_TRUE(line.find("share") == std::string::npos && line.find("closed") == std::string::npos) << line;

    scanner.limits.maxMarkers = 2;
    EXPECT_THAT(shown(scan()), ElementsAre("deep 512", "a: No permission to read it",
                                           "closed: Another account's folder, not measured", "+5 0"));
}

TEST_F(SpaceScannerTest, summarizesWhatLiesTooDeep) {
    tree->file("/r/1/2/3/x", 512);
    tree->folder("/r/1/2/closed").openError = EACCES;
    scanner.limits.maxDetailDepth = 1;
    const SpaceTree map = scan();
    ASSERT_EQ(map.nodes.size(), 3);
    EXPECT_EQ(map.at(1).detail, SpaceDetail::listed);
    EXPECT_EQ(map.at(2).detail, SpaceDetail::summarized);
    EXPECT_EQ(map.path(2), "/r/1/2");
    EXPECT_EQ(map.at(2).bytes, 512);
    EXPECT_EQ(map.at(2).unreadableCount, 1);
}

/// A folder draft with files of these sizes and names.
SpaceDraft folderOf(const std::vector<std::pair<std::string, std::int64_t>>& files) {
    SpaceDraft folder("folder", Kind::folder);
    folder.children.push_back(SpaceDraft::aggregate());
    for (const auto& [name, bytes] : files)
        folder.adopt(SpaceDraft::file(name, bytes, 0, 0));
    return folder;
}

TEST(SpaceTreeBuilderTest, foldsWhatLiesBelowACut) {
    struct Case {
        SpaceCut cut;
        std::vector<std::string> kept;
    };
    const std::vector<std::pair<std::string, std::int64_t>> files = {{"b", 20},       {"Caf\u00E9", 20}, {"A", 20},
                                                                     {"\xFFraw", 20}, {"large", 21},     {"small", 19}};
    const Case cases[] = {{SpaceCut::atLeast(20), {"b", "Caf\u00E9", "A", "\xFFraw", "large"}},
                          {SpaceCut::atLeast(21), {"large"}},
                          {{20, "b"}, {"b", "A", "large"}},
                          {{20, "cafe"}, {"b", "A", "large"}},
                          {{20, "caf\u00E9"}, {"b", "Caf\u00E9", "A", "large"}},
                          {SpaceCut::keepsNone(), {}}};
    for (const auto& [cut, kept] : cases) {
        SpaceDraft folder = folderOf(files);
        SpaceDraft* const stack[] = {&folder};
        SpaceTreeBuilder::compact(stack, cut);
        std::vector<std::string> names;
        for (const SpaceDraft& child : folder.children) {
            if (!child.isAggregate()) names.push_back(child.name);
        }
        EXPECT_EQ(names, kept) << cut.bytes << " " << cut.name;
        EXPECT_EQ(folder.children.front().entries, static_cast<std::int64_t>(files.size() - kept.size()));
        EXPECT_EQ(folder.bytes, 120);
    }
}

TEST(SpaceTreeBuilderTest, findsTheCutThatLeavesRoomEnough) {
    SpaceDraft folder = folderOf({{"a", 10}, {"b", 10}, {"B", 10}, {"c", 10}, {"d", 7}});
    SpaceDraft* const stack[] = {&folder};
    const std::pair<std::size_t, SpaceCut> cases[] = {
        {1, SpaceCut::keepsNone()}, {2, SpaceCut::atLeast(11)}, {3, {10, "a"}}, {4, {10, "a"}}, {5, {10, "b"}},
        {6, SpaceCut::atLeast(8)},  {7, SpaceCut::atLeast(0)}};
    for (const auto& [target, cut] : cases)
        EXPECT_EQ(SpaceTreeBuilder::floorToFit(stack, target), cut) << target;
}

TEST(SpaceTreeBuilderTest, keepsMarkersWhileTheyLeaveRoom) {
    SpaceDraft folder = folderOf({{"a", 10}, {"b", 9}});
    for (const char* name : {"x", "y", "z"})
        folder.adopt(SpaceDraft::marker(name, Kind::folder, UnreadableReason::noPermission));
    EXPECT_EQ(SpaceTreeBuilder::capped(folder, 7).nodeCount(), 7);
    const SpaceDraft fewer = SpaceTreeBuilder::capped(folder, 6);
    EXPECT_EQ(fewer.nodeCount(), 4);
    EXPECT_EQ(fewer.children.front().unreadableCount, 3);
    const SpaceDraft one = SpaceTreeBuilder::capped(folder, 1);
    EXPECT_EQ(one.detail, SpaceDetail::summarized);
    EXPECT_EQ(one.bytes, 19);
}

}  // namespace
}  // namespace vostrel
