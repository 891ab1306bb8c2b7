#include "spacemap/SpaceTreeBuilder.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "base/UnicodeText.h"
#include "base/Visit.h"

namespace vostrel {

namespace {

using Markers = SpaceTreeBuilder::Markers;

/// An entry that a cut may fold, and how many nodes go with it at least.
struct Foldable {
    const SpaceDraft* draft = nullptr;
    std::size_t weight = 1;
};

/// Everything below some folders that a cut may fold, and the nodes that stay whatever the cut.
struct Inventory {
    std::vector<Foldable> entries;
    std::size_t fixed = 0;

    void take(const SpaceDraft& folder, Markers markers) {
        fixed += 1 + unfoldable(folder, markers);
        takeChildren(folder, markers);
    }

private:
    void takeChildren(const SpaceDraft& folder, Markers markers) {
        const bool keepsAll = !folder.hasAggregate();
        for (const SpaceDraft& child : folder.children) {
            if (child.isAggregate() || child.isMarker()) continue;
            const std::size_t weight = 1 + unfoldable(child, markers);
            if (keepsAll) {
                fixed += weight;
            } else {
                entries.push_back({&child, weight});
            }
            takeChildren(child, markers);
        }
    }

    /// The children that stay as long as their folder does, but for those of a folder without an aggregate, which are
    /// counted one by one.
    static std::size_t unfoldable(const SpaceDraft& folder, Markers markers) {
        const bool foldsMarkers = markers == Markers::folded && folder.hasAggregate();
        std::size_t count = 0;
        for (const SpaceDraft& child : folder.children)
            count += child.isAggregate() || (child.isMarker() && !foldsMarkers) ? 1 : 0;
        return count;
    }
};

bool isShownFirst(const SpaceDraft& left, const SpaceDraft& right) {
    return isShownBefore(left.bytes, left.name, right.bytes, right.name);
}

/// Folds everything of so many bytes.
SpaceCut cutAbove(std::int64_t bytes) {
    const bool isLargest = bytes == std::numeric_limits<std::int64_t>::max();
    return isLargest ? SpaceCut::keepsNone() : SpaceCut::atLeast(bytes + 1);
}

/// The cut within the entries of one size, largest there are, that leaves at most `room` nodes of them.
SpaceCut cutByName(std::span<Foldable> equals, std::size_t room) {
    std::vector<std::pair<std::string, std::size_t>> names;
    names.reserve(equals.size());
    for (const auto& [draft, weight] : equals)
        names.emplace_back(folded(draft->name), weight);
    std::ranges::sort(names);
    SpaceCut cut = cutAbove(equals.front().draft->bytes);
    std::size_t used = 0;
    for (std::size_t at = 0; at < names.size();) {
        // The same name in several folders stands or falls together.
        std::size_t end = at;
        for (; end < names.size() && names[end].first == names[at].first; ++end)
            used += names[end].second;
        if (used > room) break;
        cut = {equals.front().draft->bytes, names[at].first};
        at = end;
    }
    return cut;
}

/// The parts of a folder's children: the aggregate, then what has a size of its own, then markers.
struct Parts {
    explicit Parts(SpaceDraft& folder) {
        const auto first = folder.children.begin() + 1;
        const auto middle =
            std::partition(first, folder.children.end(), [](const SpaceDraft& child) { return !child.isMarker(); });
        sized = {first, middle};
        markers = {middle, folder.children.end()};
    }

    std::span<SpaceDraft> sized;
    std::span<SpaceDraft> markers;
};

/// Folds the children that `isFolded` names into the aggregate; returns how many nodes went with them.
template <class Test>
std::size_t foldChildren(SpaceDraft& folder, Test isFolded) {
    SpaceDraft& aggregate = folder.children.front();
    std::size_t nodes = 0;
    const auto gone = std::remove_if(folder.children.begin() + 1, folder.children.end(), [&](const SpaceDraft& child) {
        if (!isFolded(child)) return false;
        aggregate.fold(child);
        nodes += child.nodeCount();
        return true;
    });
    folder.children.erase(gone, folder.children.end());
    return nodes;
}

/// Puts the first `most` in front, in any order; the last of them there.
void selectFirst(std::span<SpaceDraft> entries, std::size_t most) {
    if (most == 0 || entries.size() <= most) return;
    std::nth_element(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(most) - 1, entries.end(),
                     isShownFirst);
}

void foldBeyond(SpaceDraft& folder, std::span<SpaceDraft> entries, std::size_t most, SpaceTreeBuilder::Folded& folded) {
    for (const SpaceDraft& child : entries.subspan(std::min(most, entries.size()))) {
        folder.children.front().fold(child);
        folded.nodes += child.nodeCount();
        folded.largest = std::max(folded.largest, child.bytes);
    }
}

/// Children in the order of a finished map, without an aggregate that stands for nothing.
void arrange(std::vector<SpaceDraft>& children) {
    std::ranges::sort(children, [](const SpaceDraft& left, const SpaceDraft& right) {
        if (left.isAggregate() != right.isAggregate()) return right.isAggregate();
        return isShownFirst(left, right);
    });
    if (!children.empty() && children.back().isAggregate() && children.back().entries == 0) children.pop_back();
}

SpaceNode nodeOf(SpaceDraft& draft) {
    SpaceNode node;
    node.name = std::move(draft.name);
    node.kind = draft.kind;
    node.bytes = draft.bytes;
    node.files = draft.files;
    node.entries = draft.entries;
    node.device = draft.device;
    node.inode = draft.inode;
    node.unreadable = draft.unreadable;
    node.unreadableCount = draft.unreadableCount;
    node.notMeasuredCount = draft.notMeasuredCount;
    node.leftOutLibraries = draft.leftOutLibraries;
    node.stopped = draft.stopped;
    node.detail = draft.detail;
    return node;
}

std::size_t markerCount(const SpaceDraft& draft) {
    std::size_t count = draft.isMarker() ? 1 : 0;
    for (const SpaceDraft& child : draft.children)
        count += markerCount(child);
    return count;
}

}  // namespace

SpaceCut SpaceTreeBuilder::floorToFit(std::span<SpaceDraft* const> stack, std::size_t target, Markers markers) {
    Inventory inventory;
    for (const SpaceDraft* folder : stack)
        inventory.take(*folder, markers);
    if (inventory.fixed > target) return SpaceCut::keepsNone();
    auto& entries = inventory.entries;
    std::ranges::sort(entries, std::greater(), [](const Foldable& entry) { return entry.draft->bytes; });

    std::size_t used = inventory.fixed;
    for (std::size_t at = 0; at < entries.size();) {
        const std::int64_t bytes = entries[at].draft->bytes;
        const std::size_t usedBefore = used;
        std::size_t end = at;
        for (; end < entries.size() && entries[end].draft->bytes == bytes; ++end)
            used += entries[end].weight;
        if (used > target) {
            const auto equals = std::span(entries).subspan(at, end - at);
            return at == 0 ? cutByName(equals, target - usedBefore) : cutAbove(bytes);
        }
        at = end;
    }
    return SpaceCut::atLeast(0);
}

void SpaceTreeBuilder::compact(std::span<SpaceDraft* const> inProgress, const SpaceCut& cut, Markers markers) {
    for (SpaceDraft* folder : inProgress)
        prune(*folder, cut, markers);
}

void SpaceTreeBuilder::prune(SpaceDraft& draft, const SpaceCut& cut, Markers markers) {
    if (draft.hasAggregate()) {
        foldChildren(draft, [&](const SpaceDraft& child) {
            return (markers == Markers::folded || !child.isMarker()) && cut.folds(child.bytes, child.name);
        });
    }
    for (SpaceDraft& child : draft.children)
        prune(child, cut, markers);
}

SpaceTreeBuilder::Folded SpaceTreeBuilder::limitChildren(SpaceDraft& folder, std::size_t most,
                                                         std::size_t mostMarkers) {
    Folded gone;
    if (!folder.hasAggregate()) return gone;
    const Parts parts(folder);
    selectFirst(parts.sized, most);
    selectFirst(parts.markers, mostMarkers);
    foldBeyond(folder, parts.sized, most, gone);
    foldBeyond(folder, parts.markers, mostMarkers, gone);

    const auto sizedEnd = folder.children.begin() + 1 + static_cast<std::ptrdiff_t>(parts.sized.size());
    const auto markersLeft = static_cast<std::ptrdiff_t>(std::min(mostMarkers, parts.markers.size()));
    const auto sizedLeft = static_cast<std::ptrdiff_t>(std::min(most, parts.sized.size()));
    folder.children.erase(sizedEnd + markersLeft, folder.children.end());
    folder.children.erase(folder.children.begin() + 1 + sizedLeft, sizedEnd);
    return gone;
}

SpaceTreeBuilder::Folded SpaceTreeBuilder::settleChildren(SpaceDraft& folder, std::size_t most, std::size_t mostMarkers,
                                                          std::int64_t largestFolded) {
    Folded gone = limitChildren(folder, most, mostMarkers);
    const auto isSized = [](const SpaceDraft& child) { return !child.isAggregate() && !child.isMarker(); };
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    for (const SpaceDraft& child : folder.children) {
        if (isSized(child)) smallest = std::min(smallest, child.bytes);
    }
    if (!folder.hasAggregate() || smallest != std::max(largestFolded, gone.largest)) return gone;
    std::int64_t larger = 0;
    for (const SpaceDraft& child : folder.children) {
        if (isSized(child) && child.bytes > smallest) larger += child.bytes;  // at most the folder's own bytes
    }
    if (larger < folder.bytes - larger) return gone;
    gone.nodes +=
        foldChildren(folder, [&](const SpaceDraft& child) { return isSized(child) && child.bytes == smallest; });
    return gone;
}

SpaceDraft SpaceTreeBuilder::capped(SpaceDraft draft, std::size_t maxNodes) {
    const std::size_t nodes = draft.nodeCount();
    if (nodes <= maxNodes) return draft;
    constexpr std::size_t markersShare = 4;
    const auto markers = markerCount(draft) > maxNodes / markersShare ? Markers::folded : Markers::kept;
    SpaceDraft* const stack[] = {&draft};
    SpaceCut cut = floorToFit(stack, maxNodes, markers);
    // What has no size is no part of the picture; a marker is folded by any cut that folds it at all.
    if (cut == SpaceCut::atLeast(0)) cut = SpaceCut::atLeast(1);
    compact(stack, cut, markers);
    if (draft.nodeCount() > maxNodes) {
        draft.children.clear();
        draft.detail = SpaceDetail::summarized;
    }
    return draft;
}

SpaceTree SpaceTreeBuilder::freeze(SpaceDraft draft, std::string rootPath, SpaceTree::Ending ending,
                                   std::optional<SpaceTree::RootProblem> problem, Date takenAt, double duration,
                                   const SpaceTree::Stats& stats) {
    SpaceTree tree;
    tree.rootPath = std::move(rootPath);
    tree.ending = ending;
    tree.problem = problem;
    tree.takenAt = takenAt;
    tree.duration = duration;
    tree.stats = stats;

    tree.nodes.reserve(draft.nodeCount());
    std::vector<SpaceDraft*> laidOut = {&draft};
    laidOut.reserve(tree.nodes.capacity());
    tree.nodes.push_back(nodeOf(draft));
    for (std::size_t index = 0; index < laidOut.size(); ++index) {
        auto& children = laidOut[index]->children;
        if (children.empty()) continue;
        arrange(children);
        tree.nodes[index].firstChild = children.empty() ? 0 : static_cast<SpaceTree::Index>(tree.nodes.size());
        tree.nodes[index].childCount = static_cast<SpaceTree::Index>(children.size());
        for (SpaceDraft& child : children) {
            tree.nodes.push_back(nodeOf(child));
            tree.nodes.back().parent = static_cast<SpaceTree::Index>(index);
            laidOut.push_back(&child);
        }
    }
    return tree;
}

SpaceTree SpaceTreeBuilder::problem(const SpaceTree::RootProblem& problem, std::string path, std::string name,
                                    Date takenAt, double duration) {
    const auto reason = visit(
        problem, [](const Unreadable& unreadable) { return std::optional(unreadable.reason); },
        [](const auto&) { return std::optional<UnreadableReason>(); });
    const auto kind = std::holds_alternative<NotAFolder>(problem) ? SpaceNodeKind::file : SpaceNodeKind::folder;
    SpaceDraft root = reason ? SpaceDraft::marker(std::move(name), kind, *reason) : SpaceDraft(std::move(name), kind);
    return freeze(std::move(root), std::move(path), SpaceTree::Ending::complete, problem, takenAt, duration, {});
}

}  // namespace vostrel
