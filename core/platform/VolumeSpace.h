#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>

namespace vostrel {

/// How much a volume holds, and how much of it is free. Safe on any thread.

/// Counts of blocks of `size` bytes.
struct VolumeBlocks {
    std::uint64_t total = 0;
    /// Free for users without privileges; what the system keeps for itself is not among them.
    std::uint64_t available = 0;
    std::uint64_t size = 0;
};

/// The volume that the path, or what it leads to, lies on; or the error number.
[[nodiscard]] std::expected<VolumeBlocks, int> volumeBlocks(const std::filesystem::path& path);

/// The bytes that are free for what matters to the user, with what the system would clear away for it. Absent where
/// the system has no such figure or cannot tell it; 0, however much is free, of a volume where it clears nothing away.
[[nodiscard]] std::optional<std::int64_t> availableForImportantUse(const std::filesystem::path& path);

}  // namespace vostrel
