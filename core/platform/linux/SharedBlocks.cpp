#include "platform/SharedBlocks.h"

#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vostrel {

namespace {

/// Whether the file system says plainly that others use this extent as well.
bool isPlainlyShared(const fiemap_extent& extent) {
    constexpr std::uint32_t unclear = FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC | FIEMAP_EXTENT_ENCODED |
                                      FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_NOT_ALIGNED;
    return (extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0 && (extent.fe_flags & unclear) == 0;
}

}  // namespace

std::optional<SHA256Digest> sharedBlocks(int file) {
    struct stat status{};
    if (::fstat(file, &status) != 0) return std::nullopt;
    SHA256 digest;
    const auto add = [&](std::uint64_t number) { digest.update(std::as_bytes(std::span(&number, 1))); };
    add(status.st_dev);

    // See Documentation/filesystems/fiemap.rst of the kernel.
    constexpr std::uint32_t mostAtOnce = 256;
    std::vector<std::byte> buffer(sizeof(fiemap) + mostAtOnce * sizeof(fiemap_extent));
    auto* map = reinterpret_cast<fiemap*>(buffer.data());
    std::uint64_t at = 0;
    do {
        *map = {};
        map->fm_start = at;
        map->fm_length = FIEMAP_MAX_OFFSET - at;
        map->fm_extent_count = mostAtOnce;
        if (::ioctl(file, FS_IOC_FIEMAP, map) != 0) return std::nullopt;
        for (const fiemap_extent& extent : std::span(map->fm_extents, map->fm_mapped_extents)) {
            if (!isPlainlyShared(extent)) return std::nullopt;
            for (const std::uint64_t number : {extent.fe_logical, extent.fe_physical, extent.fe_length})
                add(number);
            at = extent.fe_logical + extent.fe_length;
        }
    } while (map->fm_mapped_extents > 0);
    if (at == 0) return std::nullopt;
    return digest.finish();
}

}  // namespace vostrel
