#include "platform/ExecutablePath.h"

#include <string>
#include <system_error>

namespace vostrel {

std::optional<std::filesystem::path> executablePath(std::int32_t process) {
    std::error_code failure;
    auto path = std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", failure);
    return failure ? std::nullopt : std::optional(std::move(path));
}

}  // namespace vostrel
