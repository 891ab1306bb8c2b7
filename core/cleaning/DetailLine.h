#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "base/Uuid.h"
#include "cleaning/ItemOutcome.h"

namespace vostrel {

/// One line of a run's detail file: one of its long lists.
struct DetailLine {
    Uuid id;
    std::optional<std::vector<std::filesystem::path>> plannedPaths;
    std::optional<std::vector<ItemOutcome>> outcomes;
};

/// Of a line, nothing but which run it is about.
struct RunID {
    Uuid id;
};

}  // namespace vostrel
