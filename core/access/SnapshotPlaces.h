#pragma once

#include <span>
#include <string_view>

namespace vostrel {

/// The places that a walk leaves closed, as data; names and paths are compared without regard to case.
namespace snapshot_places {

/// Relative to a home: what macOS hides, or asks the user about, while Full Disk Access is not granted.
[[nodiscard]] std::span<const std::string_view> privacy();
/// Relative to a home: what the Music and TV applications keep. Opening it may bring up a question even with access.
[[nodiscard]] std::span<const std::string_view> mediaLibraries();
/// Of the system, and measured nevertheless.
[[nodiscard]] std::span<const std::string_view> measuredSystem();
/// Folders at the top of the disk that hold other volumes, as names are compared.
[[nodiscard]] std::span<const std::string_view> volumeHolders();

/// As names are compared: extensions of media libraries, and of all libraries that need Full Disk Access, media
/// libraries included.
[[nodiscard]] std::span<const std::string_view> mediaLibraryExtensions();
[[nodiscard]] std::span<const std::string_view> privacyExtensions();

}  // namespace snapshot_places

}  // namespace vostrel
