#pragma once

#include <string_view>

namespace vostrel {

/// The names that `isScreenshotName` knows, as a regular expression: what an approval of screenshots was given for.
inline constexpr const char* screenshotNames =
    "(Screenshot|Screen Shot|Screen Recording) [0-9]{4}-[0-9]{2}-[0-9]{2} at [0-9]{1,2}\\.[0-9]{2}\\.[0-9]{2}"
    "(( |\u202F)(AM|PM))?( \\([0-9]+\\))?\\.(png|jpg|heic|tiff|pdf|gif|mov)";

/// Whether a file is named the way macOS names the screenshots and screen recordings that it saves:
/// "Screenshot 2024-01-31 at 9.05.07 PM (2).png", with an ordinary or a narrow no-break space before AM or PM.
[[nodiscard]] bool isScreenshotName(std::string_view name);

}  // namespace vostrel
