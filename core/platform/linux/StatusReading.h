#pragma once

#include <cstdint>
#include <expected>

#include "platform/FileStatus.h"

namespace vostrel::linux_platform {

/// The 32 bits that the kernel gives a device: 12 of the major number, 20 of the minor.
[[nodiscard]] std::int32_t deviceNumber(unsigned major, unsigned minor);

[[nodiscard]] EntryType entryType(unsigned mode);

/// What so many blocks of 512 bytes come to; ends the process when that is no true number.
[[nodiscard]] std::int64_t allocatedBytes(std::uint64_t blocks);

/// `statx` of `path` below `folder` (or of `folder` itself with `AT_EMPTY_PATH`), no link followed.
[[nodiscard]] std::expected<FileStatus, int> readStatus(int folder, const char* path, int flags);

}  // namespace vostrel::linux_platform
