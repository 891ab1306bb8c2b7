#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "base/SystemError.h"

namespace vostrel {

/// The folder directly in `tempBase` that is named by the prefix and that user's number and belongs to them; at most
/// one. Nothing else that merely begins so: anybody may have made it.
///
/// Links are not followed and not listed; an empty prefix, like a missing `tempBase`, gives none.
[[nodiscard]] std::expected<std::vector<std::filesystem::path>, SystemError> userTempFolders(
    const std::filesystem::path& tempBase, const std::string& prefix, std::uint32_t uid);

}  // namespace vostrel
