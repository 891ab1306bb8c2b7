#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <random>

#include "spacemap/SampleTree.h"
#include "spacemap/Sunburst.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using namespace sample;
using testing::ElementsAre;

/// "ring name(+further nodes) start-end hue pattern", angles in thousandths of a turn.
std::vector<std::string> drawn(const SpaceTree& tree, SpaceTree::Index focus) {
    constexpr const char* patterns[] = {"", " smaller", " part", " not measured"};
    std::vector<std::string> lines;
    for (const SunburstArc& arc : Sunburst::of(tree, focus).arcs) {
        lines.push_back(fmt::format("{} {}{} {:.0f}-{:.0f} {}{}", arc.ring, tree.at(arc.node).name,
                                    arc.count > 1 ? fmt::format("+{}", arc.count - 1) : "", arc.start * 1000,
                                    arc.end * 1000, arc.hue ? std::to_string(*arc.hue) : "-",
                                    patterns[static_cast<std::size_t>(arc.pattern)]));
    }
    return lines;
}

TEST(SunburstTest, drawsAFolderAsRingsOfArcs) {
    std::vector<Branch> closed;
    for (int count = 0; count < 30; ++count)
        closed.push_back(marker("closed", UnreadableReason::noPermission));
    closed.push_back(file("open", 150));
    const SpaceTree tree = treeOf(
        "/", folder("", {folder("home", {folder("films", {file("long", 300)}), file("disk", 280), aggregate(20, 9)}),
                         folder("tools", std::move(closed)), file("log", 147),
                         folder("deep", {marker("hidden", UnreadableReason::otherDisk), file("seen", 10)}),
                         file("crumb", 1), aggregate(92, 40), marker("net", UnreadableReason::otherDisk)}));
    ASSERT_THAT(tree.invariantProblems(), testing::IsEmpty());
    // The wide "home" passes the choice of hues on to its children; 30 markers share one arc; what "deep" hides has no
    // room to be shown.
    EXPECT_THAT(drawn(tree, 0),
                ElementsAre("0  0-1000 -", "1 home 0-598 255", "2 films 0-299 50", "3 long 0-299 50",
                            "2 disk 299-578 150", "2  578-598 - smaller", "1 tools 598-748 340", "2 open 598-745 340",
                            "2 closed+29 745-748 340 not measured", "1 log 748-894 95", "1 deep 894-904 205 part",
                            "2 seen 894-904 205", "1 crumb+1 904-997 - smaller", "1 net 997-1000 - not measured"));
    EXPECT_THAT(drawn(tree, 5), ElementsAre("0 crumb 0-1000 -"));
    EXPECT_THAT(drawn(treeOf("/x", marker("x", UnreadableReason::noPermission)), 0),
                ElementsAre("0 x 0-1000 - not measured"));
}

TEST(SunburstTest, everyArcLiesInsideItsFoldersAndIsFoundByItsPoints) {
    std::mt19937 random(7);
    for (int round = test::rounds(30); round > 0; --round) {
        const SpaceTree tree = treeOf("/data", randomFolder(random, 6));
        const Sunburst drawing = Sunburst::of(tree, 0);
        std::map<SpaceTree::Index, const SunburstArc*> arcOf;
        std::map<SpaceTree::Index, double> filled;  // up to where a folder's arc holds arcs
        for (const SunburstArc& arc : drawing.arcs) {
            if (arc.count == 1) arcOf[arc.node] = &arc;
            const double radius = (drawing.shape.innerRadius(arc.ring) + drawing.shape.innerRadius(arc.ring + 1)) / 2;
            const double angle = (arc.start + arc.end) * std::numbers::pi;
            EXPECT_EQ(drawing.arcAt(std::sin(angle) * radius, -std::cos(angle) * radius), &arc);
            if (arc.ring == 0) continue;

            const SpaceTree::Index parent = tree.at(arc.node).parent;
            ASSERT_TRUE(arcOf.contains(parent));
            EXPECT_EQ(arc.ring, arcOf[parent]->ring + 1);
            EXPECT_GE(arc.span(), drawing.shape.minimumSpan - 1e-9);
            EXPECT_GE(arc.start, std::max(arcOf[parent]->start, filled[parent]) - 1e-9);
            EXPECT_LE(arc.end, arcOf[parent]->end + 1e-9);
            filled[parent] = arc.end;
        }
        EXPECT_EQ(drawing.arcAt(0.8, 0.8), nullptr);
    }
}

}  // namespace
}  // namespace vostrel
