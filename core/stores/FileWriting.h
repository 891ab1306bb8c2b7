#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <string_view>

namespace vostrel {

/// Writes bytes to a descriptor as write(2) does, short writes and `errno` included.
using FileWriter = std::function<ssize_t(std::int32_t descriptor, const std::byte* bytes, std::size_t count)>;

[[nodiscard]] ssize_t systemWrite(std::int32_t descriptor, const std::byte* bytes, std::size_t count);

/// Writes all of it, through short and interrupted writes. Fails with the error number; part of it may be written then.
[[nodiscard]] std::expected<void, int> writeAll(int openFile, std::string_view bytes, const FileWriter& writer);

}  // namespace vostrel
