#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "cli/Output.h"
#include "filesystem/PathGuards.h"
#include "spacemap/HiddenSpace.h"
#include "spacemap/SpaceTree.h"

namespace vostrel::cli {

/// How much of a map is printed.
struct MapExtent {
    std::size_t lines = 25;
    std::size_t levels = 3;
};

/// Prints the largest folders and files of a map as a tree, what was not measured, and of a whole disk what no folder
/// accounts for.
void showMap(Output& output, const PathGuards& guards, const SpaceTree& tree, const std::optional<HiddenSpace>& hidden,
             const MapExtent& extent);

/// Why a map has nothing but its root.
[[nodiscard]] std::string problemSentence(const SpaceTree::RootProblem& problem, const std::string& shownPath);

}  // namespace vostrel::cli
