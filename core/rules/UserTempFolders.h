#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "base/SystemError.h"

namespace vostrel {

/// The folders directly in `tempBase` whose names begin with the prefix and that belong to that user, by name.
///
/// Links are not followed and not listed; an empty prefix, like a missing `tempBase`, gives none.
[[nodiscard]] std::expected<std::vector<std::filesystem::path>, SystemError> userTempFolders(
    const std::filesystem::path& tempBase, const std::string& prefix, std::uint32_t uid);

}  // namespace vostrel
