#pragma once

#include <cstdint>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Date.h"
#include "filesystem/WalkTotals.h"
#include "spacemap/SpaceNode.h"

namespace vostrel {

/// It is there, but no folder.
struct NotAFolder {
    friend bool operator==(const NotAFolder&, const NotAFolder&) = default;
};

/// A finished map of where the space of one folder or disk goes: all nodes in one list, the root first, every folder
/// before its children. A plain value; it never changes, so any thread may read it.
///
/// The operations take indices into `nodes` and expect sound links, as the scan makes them; `invariantProblems` is for
/// finding out.
struct SpaceTree {
    using Index = std::int32_t;

    /// How the scan ended.
    enum class Ending : std::uint8_t { complete, deadline, cancelled };
    /// Why there is nothing but a root.
    using RootProblem = std::variant<Unreadable, SkippedLink, Missing, NotAFolder>;

    struct Stats {
        /// Names of everything but folders and links; further names of a hard-linked file included.
        std::int64_t filesSeen = 0;
        std::int64_t foldersRead = 0;
        std::int64_t linksNotFollowed = 0;
        /// Entries that went into an aggregate while their folder was read.
        std::int64_t entriesFolded = 0;
        std::int64_t peakKeptNodes = 0;
        std::int64_t compactionPasses = 0;

        friend bool operator==(const Stats&, const Stats&) = default;
    };

    /// Where macOS mounts the volume that holds everything of the user's; people know its folders without this path.
    static constexpr std::string_view dataVolume = "/System/Volumes/Data";

    std::vector<SpaceNode> nodes;
    /// Absolute and without links.
    std::string rootPath;
    Ending ending = Ending::complete;
    std::optional<RootProblem> problem;
    Date takenAt;
    /// Seconds.
    double duration = 0;
    Stats stats;

    [[nodiscard]] const SpaceNode& root() const { return nodes.front(); }
    [[nodiscard]] const SpaceNode& at(Index index) const { return nodes[static_cast<std::size_t>(index)]; }
    [[nodiscard]] std::ranges::iota_view<Index, Index> children(Index index) const;
    /// The folders that hold it, the root first; none for the root.
    [[nodiscard]] std::vector<Index> ancestors(Index index) const;
    /// Where it lies on the disk; an aggregate lies nowhere.
    [[nodiscard]] std::optional<std::string> path(Index index) const;
    /// The same as people know it.
    [[nodiscard]] std::optional<std::string> userPath(Index index) const;
    /// Whether the scan came to its end.
    [[nodiscard]] bool isFinished() const { return ending == Ending::complete && !problem; }

    /// What is wrong with the nodes, one sentence fragment each; any nodes may be asked about. Empty for every tree
    /// that a scan made.
    [[nodiscard]] std::vector<std::string> invariantProblems() const;

    friend bool operator==(const SpaceTree&, const SpaceTree&) = default;
};

}  // namespace vostrel
