#pragma once

#include <filesystem>

#include "platform/ProcessEnvironment.h"

namespace vostrel {

/// The folder in which applications keep what they store for the user of this home, where the environment does not name
/// another. It need not exist.
[[nodiscard]] std::filesystem::path applicationDataFolder(const std::filesystem::path& home,
                                                          const Environment& environment);

}  // namespace vostrel
