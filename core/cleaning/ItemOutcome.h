#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vostrel {

/// What became of one planned item.
struct ItemOutcome {
    enum class Status {
        trashed,
        deleted,
        partlyDeleted,
        changed,  ///< left alone: it is not what the preview saw
        refused,  ///< left alone: it may not be removed
        failed,
        notAttempted,  ///< the run stopped before it
        unknown,       ///< something that this version does not know
    };

    std::filesystem::path path;
    /// The bytes that this is about: moved, freed, or planned where nothing happened.
    std::int64_t bytes = 0;
    Status status = Status::unknown;
    /// The sentence that tells the user.
    std::optional<std::string> message = std::nullopt;
    /// Of a deletion.
    std::optional<std::int64_t> removedFiles = std::nullopt;
    /// Where it lies in the Trash.
    std::optional<std::filesystem::path> trashPath = std::nullopt;

    friend bool operator==(const ItemOutcome&, const ItemOutcome&) = default;
};

}  // namespace vostrel
