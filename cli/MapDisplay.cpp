#include "cli/MapDisplay.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/SpaceFormat.h"
#include "base/Visit.h"
#include "platform/SystemKind.h"
#include "spacemap/NodeSentences.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Index = SpaceTree::Index;
using Style = Output::Style;

constexpr std::size_t mostMarkersShown = 10;

/// Lays out the rows of a map: the largest nodes, each below its folder.
class MapRows {
public:
    MapRows(const SpaceTree& map, const MapExtent& extent) : tree(map), isShown(map.nodes.size()) {
        choose(extent);
        addBelow(0, 0);
    }

    [[nodiscard]] const std::vector<Output::Row>& all() const { return rows; }

private:
    /// The largest; a folder stands before what it holds, so that it is never missing above it.
    void choose(const MapExtent& extent) {
        std::vector<std::size_t> depths(tree.nodes.size());
        std::vector<Index> largest;
        for (Index index = 1; index < std::ssize(tree.nodes); ++index) {
            const SpaceNode& node = tree.at(index);
            const auto depth = depths[static_cast<std::size_t>(node.parent)] + 1;
            depths[static_cast<std::size_t>(index)] = depth;
            const bool isSized = node.kind != SpaceNode::Kind::aggregate && !node.isMarker();
            if (isSized && depth <= extent.levels) largest.push_back(index);
        }
        std::ranges::stable_sort(largest, std::greater(), [&](Index index) { return tree.at(index).bytes; });
        largest.resize(std::min(largest.size(), extent.lines));
        for (const Index index : largest)
            isShown[static_cast<std::size_t>(index)] = true;
    }

    void addBelow(Index folder, std::size_t depth) {
        std::int64_t bytesLeft = tree.at(folder).bytes;
        std::int64_t entriesLeft = 0;
        bool showsSome = false;
        for (const Index child : tree.children(folder)) {
            const SpaceNode& node = tree.at(child);
            if (isShown[static_cast<std::size_t>(child)]) {
                showsSome = true;
                bytesLeft -= node.bytes;
                add(node.bytes, depth, {node.name + (node.isFolder() ? "/" : ""), Style::plain});
                addBelow(child, depth + 1);
            } else if (!node.isMarker()) {
                entriesLeft += node.kind == SpaceNode::Kind::aggregate ? node.entries : 1;
            }
        }
        if (showsSome && bytesLeft > 0)
            add(bytesLeft, depth, {"… " + counted(entriesLeft, "other", "others"), Style::dim});
    }

    void add(std::int64_t bytes, std::size_t depth, Output::Text name) {
        constexpr double barLength = 16;
        const double share = static_cast<double>(bytes) / static_cast<double>(tree.root().bytes);
        std::string bar;
        for (auto left = std::llround(share * barLength); left > 0; --left)
            bar += "█";
        name.content.insert(0, 2 * depth, ' ');
        rows.push_back({SpaceFormat::bytes(bytes), {bar, Style::dim}, SpaceFormat::percent(share), std::move(name)});
    }

    const SpaceTree& tree;
    std::vector<bool> isShown;
    std::vector<Output::Row> rows;
};

void showUnmeasured(Output& output, const PathGuards& guards, const SpaceTree& tree) {
    const SpaceNode& root = tree.root();
    std::vector<Output::Row> rows;
    std::size_t markers = 0;
    for (Index index = 1; index < std::ssize(tree.nodes); ++index) {
        const SpaceNode& node = tree.at(index);
        if (!node.isMarker() || ++markers > mostMarkersShown) continue;
        rows.push_back({guards.displayPath(*tree.userPath(index)), {unmeasuredSentences(node).front(), Style::dim}});
    }
    if (markers == 0 && root.unreadableCount == 0) return;
    output.line();
    output.line({{"Not in these sizes:", Style::bold}});
    output.table(rows, {Alignment::left, Alignment::left});
    const auto unreadable = static_cast<std::size_t>(root.unreadableCount);
    if (const auto all = std::max(unreadable, markers); all > rows.size())
        output.line(
            {{fmt::format("  … and {} more", grouped(static_cast<std::int64_t>(all - rows.size()))), Style::dim}});
}

void showHidden(Output& output, const HiddenSpace& space) {
    std::vector<Output::Row> rows = {{SpaceFormat::bytes(space.used), "used on this disk"},
                                     {SpaceFormat::bytes(space.measured), "found"},
                                     {SpaceFormat::bytes(space.hidden.value_or(0)), "hidden"}};
    if (space.swapFiles) rows.push_back({SpaceFormat::bytes(*space.swapFiles), "of it in swap files"});
    if (space.purgeable) rows.push_back({SpaceFormat::bytes(*space.purgeable), "purgeable"});
    if (const auto count = space.localSnapshotCount)
        rows.push_back({grouped(*count), *count == 1 ? "local snapshot" : "local snapshots"});
    output.line();
    output.table(rows, {Alignment::right, Alignment::left});
    for (const std::string& sentence : space.sentences(systemKind()))
        output.line({{sentence, Style::dim}});
}

}  // namespace

void showMap(Output& output, const PathGuards& guards, const SpaceTree& tree, const std::optional<HiddenSpace>& hidden,
             const MapExtent& extent) {
    const SpaceNode& root = tree.root();
    output.line({{guards.displayPath(*tree.userPath(0)), Style::bold},
                 fmt::format("  {} in {}", SpaceFormat::bytes(root.bytes), counted(root.files, "file", "files"))});
    output.table(MapRows(tree, extent).all(), {Alignment::right, Alignment::left, Alignment::right, Alignment::left});
    showUnmeasured(output, guards, tree);
    if (hidden) showHidden(output, *hidden);
}

std::string problemSentence(const SpaceTree::RootProblem& problem, const std::string& shownPath) {
    return visit(
        problem, [&](const Missing&) { return "There is nothing at " + shownPath + "."; },
        [&](const SkippedLink&) { return shownPath + " is a link. Name the folder that it leads to."; },
        [&](const NotAFolder&) { return shownPath + " is not a folder."; },
        [&](const Unreadable& unreadable) { return fmt::format("{}: {}.", shownPath, shownText(unreadable.reason)); });
}

}  // namespace vostrel::cli
