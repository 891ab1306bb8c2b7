#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "filesystem/PathForm.h"

namespace vostrel {

/// Where other volumes are mounted: every mount point but the root of the disk. A plain value.
class MountTable {
public:
    MountTable() = default;
    explicit MountTable(const std::vector<std::filesystem::path>& mountPoints);
    /// As it is at this moment.
    [[nodiscard]] static MountTable ofSystem();

    /// Without the mounts that this place lies on or in: whoever measures it wants what is mounted there.
    [[nodiscard]] MountTable withoutThoseHolding(const PathForm& place) const;

    struct Mount {
        /// As the system spells it.
        std::filesystem::path path;
        PathForm form;
    };
    [[nodiscard]] const std::vector<Mount>& mounts() const { return all; }
    /// Their paths, as a walk compares them.
    [[nodiscard]] std::vector<std::string> paths() const;

private:
    std::vector<Mount> all;
};

}  // namespace vostrel
