#include "monitor/VolumeCapacityReading.h"

#include <limits>

#include "base/SystemError.h"

namespace vostrel {

namespace {

std::int64_t bytesOf(std::uint64_t count, std::uint64_t size) {
    std::int64_t bytes = 0;
    return __builtin_mul_overflow(count, size, &bytes) ? std::numeric_limits<std::int64_t>::max() : bytes;
}

}  // namespace

std::string VolumeCapacityError::sentence(const std::filesystem::path& volume) const {
    return SystemError{statfsFailed, "read the free space of", volume}.description() + ".";
}

VolumeCapacity capacityOf(const VolumeBlocks& blocks) {
    return {.total = bytesOf(blocks.total, blocks.size), .availableNow = bytesOf(blocks.available, blocks.size)};
}

std::expected<VolumeCapacity, VolumeCapacityError> SystemVolumeCapacityReader::read(
    const std::filesystem::path& volumeAt, ImportantFigure important) const {
    const auto blocks = volumeBlocks(volumeAt);
    if (!blocks) return std::unexpected(VolumeCapacityError{blocks.error()});
    VolumeCapacity capacity = capacityOf(*blocks);
    if (important == ImportantFigure::leftOut) return capacity;
    const auto figure = availableForImportantUse(volumeAt);
    if (figure && *figure > 0) capacity.availableImportant = figure;
    return capacity;
}

}  // namespace vostrel
