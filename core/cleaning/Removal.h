#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/Date.h"
#include "filesystem/FileIdentity.h"

namespace vostrel {

/// What a deletion is held to, fixed before it starts.
struct RemovalLimits {
    /// An entry counts as changed only when its time is later than `changedAfter` by more than this.
    static constexpr std::chrono::milliseconds tolerance{1};

    /// The item to delete.
    FileIdentity item;
    /// The folder that holds it.
    FileIdentity parent;
    /// The preview's date: whatever changed its status later stays.
    Date changedAfter;
    /// Asked between entries.
    std::function<bool()> shouldStop = [] { return false; };
};

/// What one deletion did.
struct Removal {
    enum class Replaced { item, parent };
    struct Failure {
        std::string path;
        /// The system's error number.
        std::int32_t code = 0;

        friend bool operator==(const Failure&, const Failure&) = default;
    };

    /// Everything under the item was removed, the item included.
    bool isComplete = false;
    /// Entries that are no folders.
    std::int64_t removedFiles = 0;
    std::int64_t removedFolders = 0;
    /// Blocks that the removed entries gave back: none for a folder, nor for a file with further names.
    std::int64_t removedBytes = 0;
    /// Entries left because they changed after the preview.
    std::int64_t skippedChanged = 0;
    /// Entries left because they could not be checked.
    std::int64_t skippedUnchecked = 0;
    /// It stopped because `shouldStop` said so.
    bool stopped = false;
    /// The item is no longer the planned one, or the folder holding it or something in it was.
    std::optional<Replaced> replaced;
    /// The first entry that could not be removed.
    std::optional<Failure> firstError;

    [[nodiscard]] bool removedAnything() const { return removedFiles > 0 || removedFolders > 0; }

    friend bool operator==(const Removal&, const Removal&) = default;
};

}  // namespace vostrel
