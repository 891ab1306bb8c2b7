#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vostrel {

/// The bytes that an amount of memory stands for, as system tools print it: "455.25M", "0B", or a number alone. The
/// units are B, K, M, G and T, each 1024 of the one before; a part of a byte is rounded. Nothing for any other text, or
/// when the bytes are beyond 64 bits.
[[nodiscard]] std::optional<std::int64_t> parseMemoryAmount(std::string_view text);

}  // namespace vostrel
