#pragma once

#include <expected>

#include "cleaning/PlanError.h"
#include "cli/CommandLine.h"
#include "cli/Session.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel::cli {

/// Plans a rule with a line that says how far that is; Ctrl-C ends it.
[[nodiscard]] std::expected<CleanupPlan, PlanError> planWithProgress(Session& session, const GlobalOptions& options,
                                                                     const Rule& rule);

}  // namespace vostrel::cli
