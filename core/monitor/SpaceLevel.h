#pragma once

#include <cstdint>

namespace vostrel {

/// How free space stands to the user's line: below it, within half of it above it, or well above it.
enum class SpaceLevel { normal, low, critical };

/// Free space below so many lines is low.
inline constexpr double lowMultiplier = 1.5;

/// Both in bytes. Without a line (below 1) everything is normal.
[[nodiscard]] constexpr SpaceLevel spaceLevel(std::int64_t free, std::int64_t line) {
    if (line < 1) return SpaceLevel::normal;
    if (free < line) return SpaceLevel::critical;
    const bool isLow = static_cast<double>(line) * lowMultiplier > static_cast<double>(free);
    return isLow ? SpaceLevel::low : SpaceLevel::normal;
}

}  // namespace vostrel
