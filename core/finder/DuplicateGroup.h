#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Checked.h"
#include "finder/FinderCandidates.h"

namespace vostrel {

/// One of several files with the same content.
struct DuplicateCopy {
    /// Unique within a result.
    std::size_t id = 0;
    FinderPath path;
    FinderStamp stamp;
    /// Why it may not be moved to the Trash, if so.
    std::optional<std::string> trashBlock;
    /// It lies where files come and go by themselves, so that it does not count as one that stays.
    bool mayVanish = false;

    friend bool operator==(const DuplicateCopy&, const DuplicateCopy&) = default;
};

/// Files with the same content, each in a space of its own: at least two, the one to keep first.
struct DuplicateGroup {
    /// The SHA-256 of the whole content, in hexadecimal.
    std::string digest;
    /// Of each, in bytes.
    std::int64_t size = 0;
    std::vector<DuplicateCopy> copies;

    /// What all copies but the first take up: less than their size where files have holes.
    [[nodiscard]] std::int64_t reclaimableBytes() const {
        std::int64_t bytes = 0;
        for (std::size_t index = 1; index < copies.size(); ++index)
            bytes = saturatingAdd(bytes, copies[index].stamp.allocated);
        return bytes;
    }

    friend bool operator==(const DuplicateGroup&, const DuplicateGroup&) = default;
};

/// What a comparison found. The counts are of files.
struct DuplicateOutcome {
    std::vector<DuplicateGroup> groups;
    /// Every candidate was compared.
    bool finished = false;
    /// Left out because they share their space with another candidate.
    std::int64_t sharedSpaceFiles = 0;
    std::int64_t inICloud = 0;
    /// Left out because nothing tells whether they are in iCloud.
    std::int64_t couldNotCheckICloud = 0;
    std::int64_t changedOrUnreadable = 0;

    friend bool operator==(const DuplicateOutcome&, const DuplicateOutcome&) = default;
};

}  // namespace vostrel
