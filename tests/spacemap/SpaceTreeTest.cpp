#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "spacemap/SpaceTree.h"

namespace vostrel {
namespace {

using Kind = SpaceNode::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

SpaceNode node(std::string name, Kind kind, std::int64_t bytes, SpaceTree::Index parent) {
    SpaceNode made;
    made.name = std::move(name);
    made.kind = kind;
    made.bytes = bytes;
    made.parent = parent;
    return made;
}

/// "/data" with a folder of two files and an aggregate, and a file beside it.
SpaceTree sampleTree() {
    SpaceTree tree;
    tree.rootPath = "/data";
    tree.nodes = {node("data", Kind::folder, 100, -1), node("films", Kind::folder, 70, 0),
                  node("notes", Kind::file, 30, 0),    node("long", Kind::file, 40, 1),
                  node("short", Kind::file, 20, 1),    node("", Kind::aggregate, 10, 1)};
    tree.nodes[0].firstChild = 1;
    tree.nodes[0].childCount = 2;
    tree.nodes[1].firstChild = 3;
    tree.nodes[1].childCount = 3;
    return tree;
}

TEST(SpaceTreeTest, findsItsWayThroughTheNodes) {
    SpaceTree tree = sampleTree();
    EXPECT_THAT(tree.invariantProblems(), IsEmpty());
    EXPECT_EQ(tree.children(1).front(), 3);
    EXPECT_EQ(tree.children(1).back(), 5);
    EXPECT_TRUE(tree.children(2).empty());
    EXPECT_THAT(tree.ancestors(4), ElementsAre(0, 1));
    EXPECT_EQ(tree.path(4), "/data/films/short");
    EXPECT_EQ(tree.path(5), std::nullopt);

    tree.rootPath = "/";
    EXPECT_EQ(tree.path(0), "/");
    EXPECT_EQ(tree.path(4), "/films/short");
    tree.rootPath = SpaceTree::dataVolume;
    EXPECT_EQ(tree.userPath(0), "/");
    EXPECT_EQ(tree.userPath(1), "/films");
    tree.rootPath = "/System/Volumes/Database";
    EXPECT_EQ(tree.userPath(1), "/System/Volumes/Database/films");
}

TEST(SpaceTreeTest, namesEachBrokenRule) {
    struct Case {
        std::function<void(std::vector<SpaceNode>&)> damage;
        std::vector<std::string> problems;
    };
    const std::vector<Case> cases = {
        {[](auto& nodes) { nodes[4].bytes = 21; }, {"Node 1 \"films\": children add up to 71, the folder says 70"}},
        {[](auto& nodes) { std::swap(nodes[3].bytes, nodes[4].bytes); }, {"Node 1 \"films\": not largest first"}},
        {[](auto& nodes) { nodes[1].kind = Kind::file; }, {"Node 1 \"films\": only a folder has children"}},
        {[](auto& nodes) { nodes[1].detail = SpaceDetail::summarized; },
         {"Node 1 \"films\": summarized with children"}},
        {[](auto& nodes) { nodes[4].kind = Kind::aggregate; }, {"Node 1 \"films\": two aggregates"}},
        {[](auto& nodes) { std::swap(nodes[4], nodes[5]); }, {"Node 1 \"films\": the aggregate is not last"}},
        {[](auto& nodes) { nodes[4].parent = 0; }, {"Node 4 \"short\": wrong parent"}},
        {[](auto& nodes) { nodes[0].parent = 0; }, {"Node 0 \"data\": wrong parent"}},
        {[](auto& nodes) { nodes[2].firstChild = 3, nodes[2].childCount = 1; },
         {"Node 2 \"notes\": only a folder has children", "Node 3 \"long\": wrong parent",
          "Node 2 \"notes\": children add up to 40, the folder says 30"}},
        {[](auto& nodes) { nodes.push_back(node("lost", Kind::file, 0, 1)); }, {"Node 6 \"lost\": wrong parent"}},
        {[](auto& nodes) { nodes[0].childCount = 0; },
         {"Node 0 \"data\": children add up to 0, the folder says 100", "Node 1 \"films\": wrong parent",
          "Node 2 \"notes\": wrong parent"}},
        {[](auto& nodes) { nodes[1].firstChild = 1; },
         {"Node 1 \"films\": wrong firstChild", "Node 3 \"long\": wrong parent", "Node 4 \"short\": wrong parent",
          "Node 5: wrong parent"}},
        {[](auto& nodes) { nodes[1].childCount = 4; },
         {"Node 1 \"films\": wrong childCount", "Node 3 \"long\": wrong parent", "Node 4 \"short\": wrong parent",
          "Node 5: wrong parent"}},
        {[](auto& nodes) { nodes.clear(); }, {"The tree: wrong root"}},
    };
    for (const auto& [damage, problems] : cases) {
        SpaceTree tree = sampleTree();
        damage(tree.nodes);
        EXPECT_THAT(tree.invariantProblems(), testing::UnorderedElementsAreArray(problems));
    }
}

}  // namespace
}  // namespace vostrel
