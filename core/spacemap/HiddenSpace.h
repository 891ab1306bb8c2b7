#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "monitor/VolumeCapacity.h"
#include "platform/SystemKind.h"
#include "spacemap/SpaceNode.h"

namespace vostrel {

/// What the system says of space that no folder shows, where it is known.
struct SystemSpaceFigures {
    std::optional<std::int64_t> swapFiles;
    std::optional<std::int64_t> localSnapshotCount;
};

/// The used space of a disk that a map of all of it did not find. All figures are bytes but the count.
struct HiddenSpace {
    std::int64_t used = 0;
    std::int64_t measured = 0;
    bool measuredIsComplete = false;
    std::optional<std::int64_t> hidden;
    /// What the system would clear away for more important things.
    std::optional<std::int64_t> purgeable;
    std::optional<std::int64_t> swapFiles;
    std::optional<std::int64_t> localSnapshotCount;
    /// There is more of the purgeable than of the hidden: some of it lies in folders that were measured.
    bool purgeableMayBeInFolders = false;
    /// The hidden space that neither the purgeable nor the swap files account for; absent where that cannot be told.
    std::optional<std::int64_t> other;
    bool librariesLeftOut = false;
    /// More was measured than is in use: clones and shared blocks count in every folder that holds them.
    bool measuredMayCountSharedSpace = false;

    [[nodiscard]] static HiddenSpace of(const SpaceNode& root, const VolumeCapacity& capacity,
                                        const SystemSpaceFigures& figures);

    /// What people are told of it, in whole sentences.
    [[nodiscard]] std::vector<std::string> sentences(SystemKind system) const;

    friend bool operator==(const HiddenSpace&, const HiddenSpace&) = default;
};

}  // namespace vostrel
