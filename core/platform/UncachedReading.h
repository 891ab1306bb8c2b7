#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

/// Reading files once, without pushing out of the system's cache what others need. Safe on any thread.

/// Opens a file to read it, following no link in any component of its absolute path, without waiting for a FIFO, and
/// without changing its access date where the system lets us. Not open, with `errno` set, when that fails.
[[nodiscard]] OwnedDescriptor openForReading(const std::filesystem::path& path);

/// Has the system keep little or nothing of what is read through this descriptor from now on.
void turnOffCaching(int file);

/// Reads at an offset, retried after interruptions: the number of bytes, 0 at the file's end, or -1 with `errno` set.
[[nodiscard]] std::int64_t readAt(int file, std::span<std::byte> into, std::int64_t offset);

}  // namespace vostrel
