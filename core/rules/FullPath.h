#pragma once

#include <filesystem>
#include <initializer_list>

namespace vostrel {

/// Whether it begins at "/" and goes nowhere in place or up (".", ".."). A leading "~" makes no full path.
[[nodiscard]] bool isFullPath(const std::filesystem::path& path);

/// Whether the inner path is the outer one or lies below it, as written or with links resolved.
[[nodiscard]] bool holds(const std::filesystem::path& outer, const std::filesystem::path& inner);

/// Whether a component of a full path is a symbolic link. What leads to a base that holds the path is not looked at.
[[nodiscard]] bool leadsThroughLink(const std::filesystem::path& path,
                                    std::initializer_list<std::filesystem::path> bases);

}  // namespace vostrel
