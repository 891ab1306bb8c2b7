#pragma once

#include <expected>
#include <filesystem>
#include <optional>

#include "cli/CommandResult.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel::cli {

/// Held by every program while it loads, changes and saves a stored file, so that two never save over one another.
/// It is an advisory lock on "state.lock" in the data folder, and goes with the process whatever happens to it.
class StateLock {
public:
    /// Waits for its turn; makes the data folder where there is none. Fails when that is impossible or on Ctrl-C.
    [[nodiscard]] static std::expected<StateLock, Failure> take(const std::filesystem::path& dataFolder);

    /// The same for a command that only reads, which makes nothing and does without where there is no data folder or
    /// the user may not write to it: files are replaced as a whole, so that what is read is whole.
    [[nodiscard]] static std::expected<std::optional<StateLock>, Failure> takeToRead(
        const std::filesystem::path& dataFolder);

private:
    explicit StateLock(OwnedDescriptor lockedFile) : file(std::move(lockedFile)) {}

    OwnedDescriptor file;
};

}  // namespace vostrel::cli
