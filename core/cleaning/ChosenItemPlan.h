#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "base/Date.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/PlanError.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// The preview of moving chosen items of one folder to the Trash: what a rule for that folder would preview if it took
/// just these, so every check of a rule holds for them. Each item is in `items`, or in `skipped` with the reason, or in
/// neither when there is nothing of that name. `folder` is an absolute path whose links are resolved.
[[nodiscard]] std::expected<CleanupPlan, PlanError> planOfChosenItems(const CleanupPlanner& planner,
                                                                      const std::filesystem::path& folder,
                                                                      const std::set<std::string>& names, Date now,
                                                                      const std::function<bool()>& isCancelled = {});

/// The same of one item, by its absolute path.
[[nodiscard]] std::expected<CleanupPlan, PlanError> planOfChosenItem(const CleanupPlanner& planner,
                                                                     const std::filesystem::path& item, Date now,
                                                                     const std::function<bool()>& isCancelled = {});

}  // namespace vostrel
