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

/// The size of an entry that a cut may fold, and how many nodes go with it at least.
struct Foldable {
    std::int64_t bytes = 0;
    std::size_t weight = 1;
};

/// Everything below some folders that a cut may fold, and the nodes that stay whatever the cut.
class Inventory {
public:
    Inventory(std::span<SpaceDraft* const> folders, Markers wanted) : stack(folders), markers(wanted) {
        each([this](const SpaceDraft& draft, std::size_t weight) {
            entries.push_back({draft.bytes, weight});
            foldableNodes += weight;
            largest = std::max(largest, draft.bytes);
        });
    }

    [[nodiscard]] std::size_t nodeCount() const { return fixedNodes + foldableNodes; }
    [[nodiscard]] std::size_t markerCount() const { return markersMet; }
    [[nodiscard]] SpaceCut cutToFit(std::size_t target) &&;

private:
    template <class Visit>
    void each(Visit visit) {
        for (const SpaceDraft* folder : stack) {
            fixedNodes += 1 + unfoldable(*folder);
            eachBelow(*folder, visit);
        }
    }

    template <class Visit>
    void eachBelow(const SpaceDraft& folder, Visit& visit) {
        const bool keepsAll = !folder.hasAggregate();
        for (const SpaceDraft& child : folder.children) {
            if (child.isAggregate() || child.isMarker()) continue;
            const std::size_t weight = 1 + unfoldable(child);
            if (keepsAll) {
                fixedNodes += weight;
            } else {
                visit(child, weight);
            }
            eachBelow(child, visit);
        }
    }

    /// The children that stay as long as their folder does, but for those of a folder without an aggregate, which are
    /// counted one by one.
    [[nodiscard]] std::size_t unfoldable(const SpaceDraft& folder) {
        const bool foldsMarkers = markers == Markers::folded && folder.hasAggregate();
        std::size_t count = 0;
        for (const SpaceDraft& child : folder.children) {
            markersMet += child.isMarker() ? 1 : 0;
            count += child.isAggregate() || (child.isMarker() && !foldsMarkers) ? 1 : 0;
        }
        return count;
    }

    [[nodiscard]] SpaceCut cutByName(std::size_t room);

    std::span<SpaceDraft* const> stack;
    Markers markers;
    std::vector<Foldable> entries;
    std::int64_t largest = 0;
    std::size_t fixedNodes = 0;
    std::size_t foldableNodes = 0;
    std::size_t markersMet = 0;
};

bool isShownFirst(const SpaceDraft& left, const SpaceDraft& right) {
    return isShownBefore(left.bytes, left.name, right.bytes, right.name);
}

/// Folds everything of so many bytes.
SpaceCut cutAbove(std::int64_t bytes) {
    const bool isLargest = bytes == std::numeric_limits<std::int64_t>::max();
    return isLargest ? SpaceCut::keepsNone() : SpaceCut::atLeast(bytes + 1);
}

/// The size of the entry with which all that are as large or larger come to more than `room` nodes. Puts the entries
/// into another order; together they come to more.
std::int64_t sizeAtWhichItIsFull(std::span<Foldable> entries, std::size_t room) {
    while (entries.size() > 1) {
        const std::size_t half = (entries.size() + 1) / 2;
        const auto middle = entries.begin() + static_cast<std::ptrdiff_t>(half) - 1;
        std::nth_element(entries.begin(), middle, entries.end(),
                         [](const Foldable& left, const Foldable& right) { return left.bytes > right.bytes; });
        std::size_t weight = 0;
        for (const Foldable& entry : entries.first(half))
            weight += entry.weight;
        if (weight > room) {
            entries = entries.first(half);
        } else {
            room -= weight;
            entries = entries.subspan(half);
        }
    }
    return entries.front().bytes;
}

SpaceCut Inventory::cutToFit(std::size_t target) && {
    if (fixedNodes > target) return SpaceCut::keepsNone();
    const std::size_t room = target - fixedNodes;
    if (foldableNodes <= room) return SpaceCut::atLeast(0);
    const std::int64_t bytes = sizeAtWhichItIsFull(entries, room);
    return bytes == largest ? cutByName(room) : cutAbove(bytes);
}

/// The cut within the entries of the largest size that leaves at most `room` nodes of them.
SpaceCut Inventory::cutByName(std::size_t room) {
    std::vector<std::pair<std::string, std::size_t>> names;
    each([&](const SpaceDraft& draft, std::size_t weight) {
        if (draft.bytes == largest) names.emplace_back(folded(draft.name), weight);
    });
    std::ranges::sort(names);
    SpaceCut cut = cutAbove(largest);
    std::size_t used = 0;
    for (std::size_t at = 0; at < names.size();) {
        // The same name in several folders stands or falls together.
        std::size_t end = at;
        for (; end < names.size() && names[end].first == names[at].first; ++end)
            used += names[end].second;
        if (used > room) break;
        cut = {largest, names[at].first};
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

/// Folds the children that `isFolded` names into the aggregate.
template <class Test>
void foldChildren(SpaceDraft& folder, Test isFolded) {
    SpaceDraft& aggregate = folder.children.front();
    const auto gone = std::remove_if(folder.children.begin() + 1, folder.children.end(), [&](const SpaceDraft& child) {
        if (!isFolded(child)) return false;
        aggregate.fold(child);
        return true;
    });
    folder.children.erase(gone, folder.children.end());
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
void arrange(std::vector<SpaceDraft>& children, std::vector<SpaceDraft*>& arranged) {
    arranged.clear();
    for (SpaceDraft& child : children) {
        if (!child.isAggregate() || child.entries > 0) arranged.push_back(&child);
    }
    std::ranges::sort(arranged, [](const SpaceDraft* left, const SpaceDraft* right) {
        if (left->isAggregate() != right->isAggregate()) return right->isAggregate();
        return isShownFirst(*left, *right);
    });
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

}  // namespace

SpaceCut SpaceTreeBuilder::floorToFit(std::span<SpaceDraft* const> stack, std::size_t target, Markers markers) {
    return Inventory(stack, markers).cutToFit(target);
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
    const bool hasFew = folder.children.size() <= std::min(most, mostMarkers);
    if (hasFew || !folder.hasAggregate()) return gone;
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
    const std::int64_t largestGone = std::max(largestFolded, gone.largest);
    if (largestGone == 0) return gone;
    const auto isSized = [](const SpaceDraft& child) { return !child.isAggregate() && !child.isMarker(); };
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    for (const SpaceDraft& child : folder.children) {
        if (isSized(child)) smallest = std::min(smallest, child.bytes);
    }
    if (!folder.hasAggregate() || smallest != largestGone) return gone;
    std::int64_t larger = 0;
    for (const SpaceDraft& child : folder.children) {
        if (isSized(child) && child.bytes > smallest) larger += child.bytes;  // at most the folder's own bytes
    }
    if (larger < folder.bytes - larger) return gone;
    foldChildren(folder, [&](const SpaceDraft& child) {
        const bool isFolded = isSized(child) && child.bytes == smallest;
        if (isFolded) gone.nodes += child.nodeCount();
        return isFolded;
    });
    return gone;
}

SpaceDraft SpaceTreeBuilder::capped(SpaceDraft draft, std::size_t maxNodes) {
    SpaceDraft* const stack[] = {&draft};
    Inventory inventory(stack, Markers::kept);
    if (inventory.nodeCount() <= maxNodes) return draft;
    constexpr std::size_t markersShare = 4;
    const auto markers = inventory.markerCount() > maxNodes / markersShare ? Markers::folded : Markers::kept;
    SpaceCut cut = markers == Markers::kept ? std::move(inventory).cutToFit(maxNodes)
                                            : floorToFit(stack, maxNodes, Markers::folded);
    // What has no size is no part of the picture; a marker is folded by any cut that folds it at all.
    if (cut == SpaceCut::atLeast(0)) cut = SpaceCut::atLeast(1);
    compact(stack, cut, markers);
    // Only what cannot be folded at all is still too much.
    if (cut == SpaceCut::keepsNone() && draft.nodeCount() > maxNodes) {
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
    tree.nodes.push_back(nodeOf(draft));
    // Folder by folder in the order of the walk, in which they lie in memory.
    std::vector<std::pair<SpaceTree::Index, SpaceDraft*>> folders = {{0, &draft}};
    std::vector<SpaceDraft*> children;
    while (!folders.empty()) {
        const auto [index, folder] = folders.back();
        folders.pop_back();
        arrange(folder->children, children);
        if (children.empty()) continue;
        auto place = static_cast<SpaceTree::Index>(tree.nodes.size());
        SpaceNode& node = tree.nodes[static_cast<std::size_t>(index)];
        node.firstChild = place;
        node.childCount = static_cast<SpaceTree::Index>(children.size());
        for (SpaceDraft* child : children) {
            tree.nodes.push_back(nodeOf(*child));
            tree.nodes.back().parent = index;
            if (!child->children.empty()) folders.emplace_back(place, child);
            ++place;
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
