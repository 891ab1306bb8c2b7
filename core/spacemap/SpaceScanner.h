#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "filesystem/LinkSet.h"
#include "filesystem/SizeWalker.h"
#include "filesystem/WalkBudget.h"
#include "spacemap/ScanProgress.h"
#include "spacemap/SpaceScanLimits.h"
#include "spacemap/SpaceTree.h"

namespace vostrel {

/// Makes a map of one folder in bounded memory: the sizes that `walker` measures, as a tree of the largest.
///
/// The map is the same for any number of the walker's helpers. A plain value that any thread may use; one call takes
/// as long as the walk and is for a thread in the background.
struct SpaceScanner {
    SizeWalker walker;
    SpaceScanLimits limits;
    /// Where other volumes are mounted, by their paths without links: never entered, nor asked about.
    std::vector<std::string> volumeRoots;
    /// Nanoseconds that only grow.
    std::function<std::uint64_t()> clock = &steadyNanoseconds;

    /// Maps the folder at `path`, which is absolute; `name` is the root's title. A budget that runs out leaves a sound
    /// map of what was seen. `progress` may be none.
    [[nodiscard]] SpaceTree scan(const std::string& path, std::string name, const WalkBudget& budget,
                                 ScanProgressBox* progress, LinkSet& links, Date now) const;

    [[nodiscard]] static std::uint64_t steadyNanoseconds();
};

}  // namespace vostrel
