#pragma once

#include <cstddef>
#include <cstdint>

namespace vostrel {

/// What bounds a map: its memory while it is made, and how much of the disk it shows. No limit changes a total.
struct SpaceScanLimits {
    /// Most nodes of the finished map.
    std::size_t maxNodes = 60'000;
    /// Nodes that are kept while scanning before small ones are folded away.
    std::size_t transientNodes = 240'000;
    /// Most children of one folder, without its markers and its aggregate.
    std::size_t maxChildren = 48;
    /// Most markers of one folder.
    std::size_t maxMarkers = 32;
    /// Folders deeper than this have totals and no children; the root is at depth 0.
    std::size_t maxDetailDepth = 12;
    /// Files and folders of so many bytes or fewer are never shown by themselves.
    std::int64_t initialFloor = 0;

    friend bool operator==(const SpaceScanLimits&, const SpaceScanLimits&) = default;
};

}  // namespace vostrel
