#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <numeric>

#include "spacemap/SpaceScanner.h"
#include "support/FakeFolderTree.h"
#include "support/RandomTree.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

using test::closesSome;
using test::FakeFolderTree;
using testing::IsEmpty;
using Kind = SpaceNode::Kind;

constexpr std::size_t unlimited = 1'000'000;

SpaceScanner scannerOf(const std::shared_ptr<FakeFolderTree>& tree) {
    SpaceScanner scanner;
    scanner.walker.access = closesSome;
    scanner.walker.source = tree;
    scanner.clock = [] { return 0; };
    return scanner;
}

SpaceTree scan(const SpaceScanner& scanner, const WalkBudget& budget = {}) {
    LinkSet links;
    return scanner.scan("/r", "r", budget, nullptr, links, Date());
}

SpaceScanLimits randomLimits(test::Dice& dice) {
    SpaceScanLimits limits;
    limits.maxNodes = 1 + dice.below(600);
    limits.transientNodes = dice.below(900);
    limits.maxChildren = dice.below(9);
    limits.maxMarkers = dice.below(3);
    limits.maxDetailDepth = dice.below(9);
    limits.initialFloor = dice.oneOf({0, 0, 512, 9'000});
    return limits;
}

bool isSized(const SpaceNode& node) {
    return node.kind != Kind::aggregate && !node.isMarker();
}

/// The totals of a map's root in the walker's terms.
WalkTotals totalsOf(const SpaceTree& tree) {
    const SpaceNode& root = tree.root();
    WalkTotals totals;
    totals.allocatedBytes = root.bytes;
    totals.files = root.files;
    totals.unreadableFolders = root.unreadableCount;
    totals.leftOutLibraries = root.leftOutLibraries;
    totals.linksSkipped = tree.stats.linksNotFollowed;
    totals.stopped = root.stopped;
    return totals;
}

/// Checks the map against the limits, the walker's totals, and the map without limits: nothing that it leaves out of a
/// folder is larger than what it shows there.
void expectTrue(const SpaceTree& tree, const SpaceScanLimits& limits, WalkTotals expected,
                const std::map<std::string, std::int64_t>& all) {
    expected.otherVolumes = 0;
    expected.unreadableReason = std::nullopt;
    EXPECT_EQ(totalsOf(tree), expected);
    EXPECT_THAT(tree.invariantProblems(), IsEmpty());
    EXPECT_LE(tree.nodes.size(), limits.maxNodes);

    std::map<std::string, std::int64_t> smallestShown;
    std::map<std::string, std::int64_t> shown;
    for (SpaceTree::Index index = 0; index < std::ssize(tree.nodes); ++index) {
        std::int64_t files = 0;
        std::int64_t unreadable = 0;
        std::size_t sized = 0;
        std::size_t markers = 0;
        const std::string path = tree.path(index).value_or("");
        for (const auto child : tree.children(index)) {
            const SpaceNode& below = tree.at(child);
            files += below.files;
            unreadable += below.unreadableCount;
            sized += isSized(below) ? 1 : 0;
            markers += below.isMarker() ? 1 : 0;
            if (!isSized(below)) continue;
            smallestShown[path] = below.bytes;  // the last is the smallest
            shown[*tree.path(child)] = below.bytes;
        }
        const SpaceNode& node = tree.at(index);
        EXPECT_LE(sized, limits.maxChildren);
        EXPECT_LE(markers, limits.maxMarkers);
        const bool isListed = node.isFolder() && node.detail == SpaceDetail::listed && !node.isMarker();
        if (!isListed) continue;
        EXPECT_EQ(files, node.files);
        EXPECT_LE(node.unreadableCount - unreadable, 1) << "its own listing may have failed";
        EXPECT_LE(tree.ancestors(index).size(), limits.maxDetailDepth);
    }
    for (const auto& [path, bytes] : all) {
        const auto folder = smallestShown.find(path.substr(0, path.rfind('/')));
        if (folder == smallestShown.end()) continue;
        if (const auto itself = shown.find(path); itself != shown.end()) {
            EXPECT_EQ(itself->second, bytes) << path;
        } else {
            EXPECT_LE(bytes, folder->second) << path;
        }
    }
}

TEST(SpaceScannerSharedStateTest, mapsAnyTreeTheSameForAnyNumberOfHelpers) {
    int compacted = 0;
    for (int round = 0; round < test::rounds(40); ++round) {
        SCOPED_TRACE(round);
        std::mt19937 random(static_cast<unsigned>(round));
        test::Dice dice{random};
        const auto tree = std::make_shared<FakeFolderTree>();
        test::plantRandomTree(*tree, random, 300);
        SpaceScanner scanner = scannerOf(tree);
        scanner.walker.maxDepth = 12;
        scanner.walker.helpers = 0;
        LinkSet links;
        const WalkResult expected = scanner.walker.walk("/r", {}, {}, links);
        scanner.limits = {unlimited, unlimited, unlimited, unlimited, unlimited, 0};
        const SpaceTree whole = scan(scanner);
        EXPECT_EQ(whole.stats.compactionPasses, 0);
        std::map<std::string, std::int64_t> all;
        for (SpaceTree::Index index = 1; index < std::ssize(whole.nodes); ++index) {
            if (isSized(whole.at(index))) all[*whole.path(index)] = whole.at(index).bytes;
        }

        scanner.limits = randomLimits(dice);
        const SpaceTree map = scan(scanner);
        for (const unsigned helpers : {1U, 4U}) {
            scanner.walker.helpers = helpers;
            EXPECT_EQ(scan(scanner), map) << helpers;
        }
        if (const auto* problem = std::get_if<Unreadable>(&expected)) {
            EXPECT_EQ(map.problem, SpaceTree::RootProblem(*problem));
            EXPECT_EQ(map.nodes.size(), 1);
            continue;
        }
        // What no cut can fold: the folders under way, each with its aggregate, its markers, and children that wait to
        // be limited. While they alone are too many, everything else is folded, large or small.
        const auto& limits = scanner.limits;
        const std::size_t underWay =
            (limits.maxDetailDepth + 1) * (2 + 2 * (limits.maxChildren + limits.maxMarkers + 1)) + 12;
        const bool hasRoom = limits.transientNodes / 2 >= underWay;
        if (!hasRoom) all.clear();
        expectTrue(map, limits, std::get<Measured>(expected).totals, all);
        EXPECT_LE(map.stats.peakKeptNodes, hasRoom ? limits.transientNodes + 2 : 2 * underWay + limits.transientNodes);
        compacted += hasRoom && map.stats.compactionPasses > 0 ? 1 : 0;
    }
    EXPECT_GT(compacted, 0);
}

TEST(SpaceScannerSharedStateTest, stopsAtAnyMomentWithASoundMap) {
    const auto tree = std::make_shared<FakeFolderTree>();
    std::mt19937 random(7);
    test::plantRandomTree(*tree, random, 200);
    tree->at("/r").openError = tree->at("/r").statusError = tree->at("/r").listingError = 0;
    SpaceScanner scanner = scannerOf(tree);
    scanner.limits.transientNodes = 60;
    for (int lastPoll = 1; lastPoll < 200; lastPoll += 1 + 20 / test::rounds(1)) {
        const auto stopping = [&] {
            return WalkBudget{.isCancelled = [polls = 0, lastPoll]() mutable { return ++polls >= lastPoll; }};
        };
        for (const unsigned helpers : {0U, 4U}) {
            scanner.walker.helpers = helpers;
            const SpaceTree map = scan(scanner, stopping());
            EXPECT_EQ(map.ending, SpaceTree::Ending::cancelled);
            EXPECT_THAT(map.invariantProblems(), IsEmpty());
            LinkSet links;
            auto expected = std::get<Measured>(scanner.walker.walk("/r", {}, stopping(), links)).totals;
            EXPECT_TRUE(map.root().stopped);
            if (helpers == 0) expectTrue(map, scanner.limits, expected, {});
        }
    }
    const WalkBudget late{
        .deadline = Date::fromSeconds(1), .isCancelled = {}, .clock = [] { return Date::fromSeconds(2); }};
    EXPECT_EQ(scan(scanner, late).ending, SpaceTree::Ending::deadline);
}

}  // namespace
}  // namespace vostrel
