#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "cleaning/CleanupRunner.h"
#include "cleaning/PlanError.h"
#include "cli/Agreement.h"
#include "cli/CommandResult.h"
#include "cli/Session.h"
#include "rules/CleanupPlan.h"

namespace vostrel::cli {

using RunOfPlan = std::function<RunReport(const CleanupRunner&, const CleanupPlan&, const RunControl&)>;

/// Shows the plans of items that the user chose one by one, asks, carries them out with `run` and shows what came of
/// it.
[[nodiscard]] CommandResult trashChosen(Session& session, const std::vector<CleanupPlan>& plans, Consent consent,
                                        const RunOfPlan& run);

/// Why there is no plan for a chosen item, and why it is not in one that there is.
[[nodiscard]] std::string whyNoPlan(const Session& session, const std::filesystem::path& item, const PlanError& error);
[[nodiscard]] std::string whyNotPlanned(const Session& session, const CleanupPlan& plan,
                                        const std::filesystem::path& item);

}  // namespace vostrel::cli
