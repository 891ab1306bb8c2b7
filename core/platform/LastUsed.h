#pragma once

#include <filesystem>
#include <optional>

#include "base/Date.h"

namespace vostrel {

/// When the item was last opened, as far as the system keeps that: macOS's metadata knows it by path, on Linux it is
/// the access date (`accessed`) that was read with the item's other facts. May take milliseconds on macOS.
[[nodiscard]] std::optional<Date> lastUsedDate(const std::filesystem::path& item, Date accessed);

}  // namespace vostrel
