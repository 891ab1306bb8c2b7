#pragma once

#include <expected>
#include <filesystem>
#include <functional>

#include "base/Date.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/PlanError.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// The preview of moving one chosen item to the Trash: what a rule for the folder that holds it would preview if it
/// took this one item, so every check of a rule holds for it. The item is in `items`, or in `skipped` with the reason,
/// or in neither when there is nothing of that name. `item` is an absolute path; links in the folders above it are
/// resolved.
[[nodiscard]] std::expected<CleanupPlan, PlanError> planOfChosenItem(const CleanupPlanner& planner,
                                                                     const std::filesystem::path& item, Date now,
                                                                     const std::function<bool()>& isCancelled = {});

}  // namespace vostrel
