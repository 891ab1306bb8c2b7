#include "platform/VolumeSpace.h"

#include <sys/statvfs.h>

#include <cerrno>

namespace vostrel {

std::expected<VolumeBlocks, int> volumeBlocks(const std::filesystem::path& path) {
    struct statvfs facts{};
    while (::statvfs(path.c_str(), &facts) != 0) {
        if (errno != EINTR) return std::unexpected(errno);
    }
    return VolumeBlocks{.total = facts.f_blocks, .available = facts.f_bavail, .size = facts.f_frsize};
}

// Nothing clears space away by itself here.
std::optional<std::int64_t> availableForImportantUse(const std::filesystem::path&) {
    return std::nullopt;
}

}  // namespace vostrel
