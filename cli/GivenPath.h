#pragma once

#include <filesystem>

namespace vostrel::cli {

/// A path as the shell's user means it: from the folder they are in, without a slash at its end. Where it goes up or in
/// place (".."), its links are resolved; its last link otherwise stays.
[[nodiscard]] std::filesystem::path asGiven(const std::filesystem::path& path);

}  // namespace vostrel::cli
