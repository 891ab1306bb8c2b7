#pragma once

#include <filesystem>

namespace vostrel {

/// Whether the item is kept in a cloud by the system itself (iCloud). A path that cannot be asked is not.
[[nodiscard]] bool isInCloudStorage(const std::filesystem::path& item);

/// Whether the item is a placeholder whose content is only in the cloud. Asking never downloads it.
[[nodiscard]] bool isDataless(const std::filesystem::path& item);

}  // namespace vostrel
