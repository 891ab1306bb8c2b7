#pragma once

#include <string_view>

namespace vostrel {

/// Whether a folder of that name is a package: something that people are shown as one file, such as an application or
/// an Xcode project. Goes by the extension, in any case, and so is the same on every system.
[[nodiscard]] bool isPackageName(std::string_view folderName);

}  // namespace vostrel
