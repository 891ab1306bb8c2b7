#pragma once

#include <string_view>

namespace vostrel {

/// Whether a file is named the way macOS names the screenshots and screen recordings that it saves:
/// "Screenshot 2024-01-31 at 9.05.07 PM (2).png", with an ordinary or a narrow no-break space before AM or PM.
[[nodiscard]] bool isScreenshotName(std::string_view name);

}  // namespace vostrel
