#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "spacemap/SpaceNode.h"

namespace vostrel {

/// A node while the map is made: as `SpaceNode`, but it owns its children. Sums that do not fit end the process.
///
/// A folder that lists children has its aggregate ready as the first of them. It is built by one thread.
struct SpaceDraft {
    using Kind = SpaceNodeKind;

    SpaceDraft(std::string itsName, Kind itsKind) : name(std::move(itsName)), kind(itsKind) {}
    [[nodiscard]] static SpaceDraft file(std::string name, std::int64_t bytes, std::int32_t device,
                                         std::uint64_t inode);
    [[nodiscard]] static SpaceDraft aggregate() { return {{}, Kind::aggregate}; }
    /// A place that is missing from the totals. It counts itself, as a library or as unreadable.
    [[nodiscard]] static SpaceDraft marker(std::string name, Kind kind, UnreadableReason why);
    /// The marker of another volume's top. It counts nothing: what lies there is no part of this disk.
    [[nodiscard]] static SpaceDraft otherVolume(std::string name);

    std::string name;
    Kind kind;
    bool stopped = false;
    SpaceDetail detail = SpaceDetail::listed;
    std::int32_t device = 0;
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::int64_t entries = 0;
    std::uint64_t inode = 0;
    std::optional<UnreadableReason> unreadable;
    std::int64_t unreadableCount = 0;
    std::int64_t notMeasuredCount = 0;
    std::int64_t leftOutLibraries = 0;
    std::vector<SpaceDraft> children;

    [[nodiscard]] bool isMarker() const { return unreadable.has_value(); }
    [[nodiscard]] bool isAggregate() const { return kind == Kind::aggregate; }
    [[nodiscard]] bool hasAggregate() const { return !children.empty() && children.front().isAggregate(); }
    /// Itself and everything below it.
    [[nodiscard]] std::size_t nodeCount() const;

    /// Counts the child and keeps it.
    void adopt(SpaceDraft child);
    /// Counts the child, which is not kept.
    void absorb(const SpaceDraft& child);
    /// Of an aggregate: stands for the child from now on.
    void fold(const SpaceDraft& child);
};

}  // namespace vostrel
