#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "filesystem/UnreadableReason.h"

namespace vostrel {

/// How much of a folder a map shows: its largest children, or nothing but its totals.
enum class SpaceDetail : std::uint8_t { listed, summarized };

/// What a node of a map stands for.
enum class SpaceNodeKind : std::uint8_t {
    folder,
    file,
    /// Everything in one folder that is too small to be shown by itself.
    aggregate,
};

/// One node of a finished map. A plain value, 32 bits for each link to another node.
///
/// Its totals count everything below it, shown or not.
struct SpaceNode {
    using Kind = SpaceNodeKind;

    /// As bytes, as the folder lists it. An aggregate has none; the root has the map's title.
    std::string name;
    Kind kind = Kind::folder;
    /// Allocated on disk.
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    /// Of an aggregate: how many entries of its folder it stands for.
    std::int64_t entries = 0;

    /// Indices into the tree's nodes; the root's parent is -1. Children stand side by side, largest first, the
    /// aggregate last.
    std::int32_t parent = -1;
    std::int32_t firstChild = 0;
    std::int32_t childCount = 0;

    /// Which file or folder it was; 0 and 0 where that is not known.
    std::int32_t device = 0;
    std::uint64_t inode = 0;

    /// Why this very place was not measured: such a node is a marker, without bytes and without children.
    std::optional<UnreadableReason> unreadable;
    /// Places that are missing from the totals: that could not be read, that were left out on purpose, folders too
    /// deep.
    std::int64_t unreadableCount = 0;
    /// Those of them that were left out on purpose.
    std::int64_t notMeasuredCount = 0;
    /// Music and TV libraries passed over; they count as neither.
    std::int64_t leftOutLibraries = 0;
    /// The scan ended before it had seen all of this.
    bool stopped = false;
    SpaceDetail detail = SpaceDetail::listed;

    [[nodiscard]] bool isComplete() const { return unreadableCount == 0 && !stopped; }
    [[nodiscard]] bool isMarker() const { return unreadable.has_value(); }
    [[nodiscard]] bool isFolder() const { return kind == Kind::folder; }
    [[nodiscard]] std::int64_t couldNotReadCount() const { return unreadableCount - notMeasuredCount; }

    friend bool operator==(const SpaceNode&, const SpaceNode&) = default;
};

}  // namespace vostrel
