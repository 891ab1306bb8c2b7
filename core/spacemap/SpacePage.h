#pragma once

#include <span>
#include <string>
#include <string_view>

#include "spacemap/SpaceTree.h"

namespace vostrel {

/// A map as one self-contained HTML page: the sunburst, in which people go from folder to folder, and a table beside
/// it. It asks the network for nothing, and shows every name as text, whatever is in it.
///
/// `remarks` are sentences on the map as a whole, shown below its title. The tree's links must be sound.
[[nodiscard]] std::string spacePage(const SpaceTree& tree, std::span<const std::string> remarks);

/// Whether this is such a page, of any map.
[[nodiscard]] bool isSpacePage(std::string_view content);

}  // namespace vostrel
