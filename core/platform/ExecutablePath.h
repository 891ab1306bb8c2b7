#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace vostrel {

/// The file that the process runs; nothing when it is gone or another user's. Any thread.
[[nodiscard]] std::optional<std::filesystem::path> executablePath(std::int32_t process);

}  // namespace vostrel
