#pragma once

#include <filesystem>
#include <vector>

namespace vostrel {

/// Where file systems are mounted, as the calling process sees them, by paths without links: the root, other disks,
/// network shares, the system's own. Empty where the system does not say. Safe on any thread.
[[nodiscard]] std::vector<std::filesystem::path> mountPoints();

}  // namespace vostrel
