#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>

#include "base/Date.h"
#include "platform/FolderEntry.h"

namespace vostrel {

/// What the system says about one file or folder itself, no link followed, and no slash at a path's end taken for one
/// that asks to follow it.
struct FileStatus {
    EntryType type = EntryType::none;
    std::int32_t device = 0;
    std::uint64_t inode = 0;
    /// Which mount it was found on. Two mounts of one disk share the device number, never this.
    std::uint64_t mount = 0;
    /// It is the top folder (or file) of a mount.
    bool isMountRoot = false;
    std::uint32_t linkCount = 1;
    std::int64_t allocated = 0;
    std::int64_t length = 0;
    std::uint32_t owner = 0;
    /// Permission bits, without the type.
    std::uint16_t mode = 0;
    Date modified;
    Date changed;
    Date accessed;
    /// When it arrived in its folder, where the file system records that.
    std::optional<Date> added;
    bool isDataless = false;
};

/// Each fails with an error number.
[[nodiscard]] std::expected<FileStatus, int> statusOfPath(const std::filesystem::path& path);
[[nodiscard]] std::expected<FileStatus, int> statusOfOpen(int descriptor);
[[nodiscard]] std::expected<FileStatus, int> statusOfEntry(int openFolder, const char* name);

}  // namespace vostrel
