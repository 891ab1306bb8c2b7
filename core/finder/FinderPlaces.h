#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/SystemKind.h"

/// Where a search finds nothing to offer, as data: places by their path in the home, folders by their names and by what
/// they hold.
namespace vostrel::finder_places {

/// Never entered, relative to the home folder.
[[nodiscard]] std::span<const std::string_view> excluded(SystemKind system);

/// A folder of that name belongs to a version control system, whose own it is.
[[nodiscard]] bool isRepositoryName(std::string_view folderName);
/// A folder that holds an entry of that name is the top of a repository.
[[nodiscard]] bool marksRepository(std::string_view entryName);

/// A folder of that name is managed by a tool or a program: its files come and go as that one likes.
[[nodiscard]] bool isToolsName(std::string_view folderName);
/// A folder that holds an entry of that name is.
[[nodiscard]] bool marksTools(std::string_view entryName);

inline constexpr std::string_view insideRepository = "It is part of a repository.";
inline constexpr std::string_view insidePackage = "It is part of a package.";
inline constexpr std::string_view insideTools = "It is managed by a tool or an app.";
inline constexpr std::string_view insideTemporary = "It lies in a folder for temporary files.";

/// Why files below a chosen folder are not to be moved away, whatever they are: it lies in one of these places itself.
[[nodiscard]] std::optional<std::string_view> blockForRoot(const std::filesystem::path& root,
                                                           const std::filesystem::path& home);

/// Whether what lies in that folder may be gone tomorrow: temporary files, and what tools make again. Goes by the names
/// of the folders above it, up to the home.
[[nodiscard]] bool mayVanishIn(const std::filesystem::path& folder, const std::filesystem::path& home);

}  // namespace vostrel::finder_places
