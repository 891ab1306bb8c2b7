#pragma once

#include <array>
#include <string_view>

namespace vostrel {

/// How the menu bar shows free space.
enum class ReadoutStyle { gigabytes, percent, bar, iconOnly };

struct ReadoutStyleTitle {
    ReadoutStyle style;
    std::string_view title;
};

/// All styles in the order in which they are offered, as the user reads them.
inline constexpr std::array readoutStyleTitles{
    ReadoutStyleTitle{ReadoutStyle::gigabytes, "GB free"},
    ReadoutStyleTitle{ReadoutStyle::percent, "Percent free"},
    ReadoutStyleTitle{ReadoutStyle::bar, "Bar"},
    ReadoutStyleTitle{ReadoutStyle::iconOnly, "Icon only"},
};

}  // namespace vostrel
