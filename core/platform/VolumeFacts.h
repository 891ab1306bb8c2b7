#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vostrel {

/// Facts of the volume that an open file or folder lies on.
///
/// Every question goes by descriptor, so that the answer is about the folder that was checked and not about whatever
/// its path names a moment later. A descriptor opened only to name a place (O_PATH) serves for all of them, but the
/// UUID of some volumes needs one that is open for reading. Safe on any thread.

/// One mount: a bind mount keeps the device number of what it shows, so the device alone does not tell mounts apart.
struct MountIdentity {
    std::uint64_t device = 0;
    std::uint64_t mount = 0;

    friend auto operator<=>(const MountIdentity&, const MountIdentity&) = default;
};

/// Absent when the system does not say; nothing is then known to lie on the same mount.
[[nodiscard]] std::optional<MountIdentity> mountIdentity(int openFile);

/// Whether the folder is the top of a mount. What cannot be told counts as one.
[[nodiscard]] bool isMountRoot(int openFolder);

/// The same of a path whose last component is not followed; a path that names nothing is none.
[[nodiscard]] bool isMountPoint(const std::filesystem::path& folder);

/// What recognises the volume after a restart: its UUID, or what serves as one. Network and pseudo file systems
/// have none.
[[nodiscard]] std::optional<std::string> volumeUUID(int openFolder);

/// The name of the file system, "ext4" or "apfs".
[[nodiscard]] std::optional<std::string> fileSystemType(int openFolder);

/// Whether the mount notes when files and folders are read.
enum class AccessTimes { kept, notKept };
[[nodiscard]] AccessTimes accessTimes(int openFolder);

/// Whether a file system of this type records when an item arrived in its folder.
[[nodiscard]] bool recordsAddedDates(std::string_view fileSystemType);

/// Whether such a file system, mounted with such access times, records when an item was last opened.
[[nodiscard]] bool recordsLastUsedDates(std::string_view fileSystemType, AccessTimes times);

}  // namespace vostrel
