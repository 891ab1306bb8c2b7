#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "base/SystemError.h"

namespace vostrel {

/// The folder directly in `tempBase` that is named by the prefix and that user's number and belongs to them. Nothing
/// that merely begins so: anybody may have made it.
///
/// A link is no folder; an empty prefix, like a missing `tempBase`, gives none.
[[nodiscard]] std::expected<std::optional<std::filesystem::path>, SystemError> userTempFolder(
    const std::filesystem::path& tempBase, const std::string& prefix, std::uint32_t uid);

}  // namespace vostrel
