#pragma once

#include <cstdint>
#include <string>

/// Amounts of space as people read them, in decimal units: 1 GB is 1,000,000,000 bytes.
namespace vostrel::SpaceFormat {

/// "1.5 GB", "12 MB"; "less than 1 MB" below a million bytes, "0 MB" for none.
[[nodiscard]] std::string bytes(std::int64_t count);

/// The same to be read out: "1.5 gigabytes", "less than 1 megabyte".
[[nodiscard]] std::string spokenBytes(std::int64_t count);

/// "up to 1.5 GB"; below a million bytes as `bytes` says it.
[[nodiscard]] std::string upTo(std::int64_t count);

/// As `bytes`, but rounded down: for free space, of which nobody should be told more than there is.
[[nodiscard]] std::string bytesFloor(std::int64_t count);

/// A share of 0 to 1 in whole percent, rounded down: "19%"; "less than 1%" below one, "0%" for none.
[[nodiscard]] std::string percent(double share);

}  // namespace vostrel::SpaceFormat
