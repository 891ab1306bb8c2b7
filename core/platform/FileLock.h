#pragma once

#include <expected>
#include <filesystem>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

/// Why a file could not be locked.
struct FileLockError {
    enum class Step { open, lock };

    Step step = Step::open;
    int code = 0;
    /// Somebody else holds the lock.
    bool isHeld = false;
};

/// Takes the exclusive advisory lock on a file, which is made (for its owner alone) where there is none. Anything but a
/// regular file of one name fails: a link, or a hard link to somebody's file. Does not wait. The lock goes when the
/// descriptor is closed, or with the process, whatever happens to it. Safe on any thread: each call is a holder of its
/// own.
[[nodiscard]] std::expected<OwnedDescriptor, FileLockError> lockFile(const std::filesystem::path& path);

}  // namespace vostrel
