#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "monitor/VolumeCapacity.h"
#include "platform/VolumeSpace.h"

namespace vostrel {

/// Why the space of a volume could not be read.
struct VolumeCapacityError {
    /// The system's error number.
    int statfsFailed = 0;

    /// "Could not read the free space of /a: No such file or directory."
    [[nodiscard]] std::string sentence(const std::filesystem::path& volume) const;

    friend bool operator==(const VolumeCapacityError&, const VolumeCapacityError&) = default;
};

/// Whether to ask for the space that is available for important use, which takes the system far longer.
enum class ImportantFigure { included, leftOut };

/// Where the figures of a volume come from.
class VolumeCapacityReading {
public:
    VolumeCapacityReading() = default;
    VolumeCapacityReading(const VolumeCapacityReading&) = default;
    VolumeCapacityReading& operator=(const VolumeCapacityReading&) = default;
    virtual ~VolumeCapacityReading() = default;

    /// The volume is that of any path on it. An important figure that cannot be had is absent, and no error.
    [[nodiscard]] virtual std::expected<VolumeCapacity, VolumeCapacityError> read(const std::filesystem::path& volumeAt,
                                                                                  ImportantFigure important) const = 0;
};

/// Asks the system. Any thread.
class SystemVolumeCapacityReader : public VolumeCapacityReading {
public:
    [[nodiscard]] std::expected<VolumeCapacity, VolumeCapacityError> read(const std::filesystem::path& volumeAt,
                                                                          ImportantFigure important) const override;
};

/// The two figures that blocks stand for; each ends at the largest that 64 bits hold.
[[nodiscard]] VolumeCapacity capacityOf(const VolumeBlocks& blocks);

}  // namespace vostrel
