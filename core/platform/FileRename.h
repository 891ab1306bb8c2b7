#pragma once

#include <expected>
#include <filesystem>

namespace vostrel {

/// Renames a file, folder or link within its volume, but never onto something else: fails with `EEXIST` where the new
/// name is taken, by a broken link too. Fails with the error number.
[[nodiscard]] std::expected<void, int> renameExclusive(const std::filesystem::path& from,
                                                       const std::filesystem::path& to);

}  // namespace vostrel
