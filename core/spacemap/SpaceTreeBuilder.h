#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "spacemap/SpaceCut.h"
#include "spacemap/SpaceDraft.h"
#include "spacemap/SpaceTree.h"

namespace vostrel {

/// What makes a finished map of drafts: folding small entries away, and laying the rest out as one list.
///
/// Folding moves entries into the aggregate of their folder and never changes a folder's totals. A folder without an
/// aggregate keeps everything.
struct SpaceTreeBuilder {
    enum class Markers { kept, folded };

    /// A cut that leaves at most `target` nodes of these folders, themselves included, or as few as can be. Equal
    /// sizes fall together unless nothing larger is there; then names decide. `stack` holds folders under way, the
    /// root first, none of them inside another's children.
    [[nodiscard]] static SpaceCut floorToFit(std::span<SpaceDraft* const> stack, std::size_t target,
                                             Markers markers = Markers::kept);

    /// Folds what lies below the cut in every folder of the stack and in everything they hold.
    static void compact(std::span<SpaceDraft* const> inProgress, const SpaceCut& cut, Markers markers = Markers::kept);
    static void compact(std::span<SpaceDraft* const> inProgress, std::int64_t floor) {
        compact(inProgress, SpaceCut::atLeast(floor));
    }

    /// The same below one draft. Markers have no size; they are folded with the rest only if that is asked for.
    static void prune(SpaceDraft& draft, const SpaceCut& cut, Markers markers);
    static void prune(SpaceDraft& draft, std::int64_t floor, Markers markers) {
        prune(draft, SpaceCut::atLeast(floor), markers);
    }

    /// What went: how many nodes, and the largest size of a child that had to give way by number.
    struct Folded {
        std::size_t nodes = 0;
        std::int64_t largest = 0;
    };

    /// Folds what a folder has beyond `most` children and `mostMarkers` markers: the smallest, and the markers that
    /// stand last by name.
    static Folded limitChildren(SpaceDraft& folder, std::size_t most, std::size_t mostMarkers);
    /// The same at a folder's end, when its size is known: where what is larger makes up half of the folder or more,
    /// equal sizes fall together, so that a film of 10 GB is not shown beside 47 of 100,000 notes. `largestFolded` is
    /// the largest size of a child that gave way by number earlier.
    static Folded settleChildren(SpaceDraft& folder, std::size_t most, std::size_t mostMarkers,
                                 std::int64_t largestFolded);

    /// Brings the draft within so many nodes, with its markers only where they leave room for the rest.
    [[nodiscard]] static SpaceDraft capped(SpaceDraft draft, std::size_t maxNodes);

    [[nodiscard]] static SpaceTree freeze(SpaceDraft draft, std::string rootPath, SpaceTree::Ending ending,
                                          std::optional<SpaceTree::RootProblem> problem, Date takenAt, double duration,
                                          const SpaceTree::Stats& stats);

    /// A tree of one node that says why there is no more.
    [[nodiscard]] static SpaceTree problem(const SpaceTree::RootProblem& problem, std::string path, std::string name,
                                           Date takenAt, double duration);
};

}  // namespace vostrel
