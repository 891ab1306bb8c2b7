#pragma once

#include <cstddef>
#include <string>

#include "cli/Output.h"
#include "filesystem/PathGuards.h"
#include "finder/FinderResult.h"

namespace vostrel::cli {

/// What was asked for, and how much of it is printed.
struct FindExtent {
    bool large = true;
    bool old = true;
    bool duplicates = true;
    /// Files, or groups, of each.
    std::size_t lines = 20;
};

/// Prints what a search found, why some of it may not be moved to the Trash, and what was not searched.
void showFound(Output& output, const PathGuards& guards, const FinderResult& result, const FindExtent& extent);

/// Why a folder was not searched.
[[nodiscard]] std::string problemSentence(const FinderUnsearchedRoot& root, const PathGuards& guards);

}  // namespace vostrel::cli
