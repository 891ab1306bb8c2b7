#pragma once

#include <filesystem>
#include <vector>

namespace vostrel {

/// The other paths at which the system's mounts show what lies at this path, for a path that goes through no link: of
/// "/mnt/x/new", where "/home/ann/.ssh" is mounted a second time at "/mnt/x", "/home/ann/.ssh/new". Nothing need exist
/// at the path. Empty where the system mounts nothing twice, or does not say. Safe on any thread.
[[nodiscard]] std::vector<std::filesystem::path> otherPathsOf(const std::filesystem::path& path);

}  // namespace vostrel
