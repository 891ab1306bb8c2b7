#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

namespace vostrel {

/// The space of one volume in bytes, none of it negative.
struct VolumeCapacity {
    std::int64_t total = 0;
    /// Free right now for programs without privileges.
    std::int64_t availableNow = 0;
    /// Free for what matters to the user, with what the system would clear away for it. Absent where the system has
    /// no such figure, or where it was not asked for.
    std::optional<std::int64_t> availableImportant = std::nullopt;

    /// The free space that the user sees.
    [[nodiscard]] std::int64_t displayedFree() const { return availableImportant.value_or(availableNow); }
    [[nodiscard]] std::int64_t used() const { return std::max<std::int64_t>(total - displayedFree(), 0); }
    /// 0 to 1.
    [[nodiscard]] double displayedFreeFraction() const {
        return total < 1 ? 0 : static_cast<double>(displayedFree()) / static_cast<double>(total);
    }

    friend bool operator==(const VolumeCapacity&, const VolumeCapacity&) = default;
};

}  // namespace vostrel
