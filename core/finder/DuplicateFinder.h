#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "filesystem/WalkBudget.h"
#include "finder/DuplicateGroup.h"
#include "finder/FileDigesting.h"
#include "finder/FinderProgress.h"

namespace vostrel {

struct DuplicateLimits {
    std::int64_t minBytes = 1'000'000;
    /// Threads that read files.
    int workers = 2;
};

/// Finds the files with the same content among candidates, and reads as little as it can.
///
/// Candidates are told apart by size, then by the SHA-256 of their first 64 KiB, then of their last, and what is still
/// alike by that of the whole; a file that no other can equal any more is not read on. Files of one space (names of one
/// file, clones) count as one. It reads and changes nothing else. A value; `find` takes as long as the reading does.
struct DuplicateFinder {
    /// Outlives the object.
    const FileDigesting& digester;
    DuplicateLimits limits = {};
    /// Whether a file is kept in iCloud; nothing when that cannot be told. Thread-safe, as those below.
    std::function<std::optional<bool>(const std::filesystem::path&)> isInICloud;
    /// Why a file may not be moved to the Trash, if so.
    std::function<std::optional<std::string>(const std::filesystem::path&)> trashBlock;
    /// Whether a file lies where files come and go by themselves; may be empty.
    std::function<bool(const std::filesystem::path&)> mayVanish = {};
    /// Equal for files that lie on the same blocks, where the file system tells; may be empty.
    std::function<std::optional<SHA256Digest>(const std::filesystem::path&)> sharedBlocks = {};

    /// A budget that runs out leaves the groups of which everything is known by then. `progress` may be none.
    [[nodiscard]] DuplicateOutcome find(std::vector<DuplicatePoolEntry> pool, FinderProgressBox* progress,
                                        const WalkBudget& budget) const;
};

}  // namespace vostrel
