#pragma once

#include <expected>
#include <string_view>

#include "cleaning/PlanError.h"
#include "cli/CommandLine.h"
#include "cli/CommandResult.h"
#include "cli/Session.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel::cli {

/// Plans a rule with a line that says how far that is; Ctrl-C ends it.
[[nodiscard]] std::expected<CleanupPlan, PlanError> planWithProgress(Session& session, const GlobalOptions& options,
                                                                     const Rule& rule);

/// A rule as the user named it and what it would remove now.
struct RulePreview {
    Rule rule;
    CleanupPlan plan;
};

/// Finds the rule that the user means, plans it and shows that. Fails when there is no such rule, when it cannot be
/// planned, and after Ctrl-C: nobody goes on with what they stopped.
[[nodiscard]] std::expected<RulePreview, Failure> previewRule(Session& session, const GlobalOptions& options,
                                                              std::string_view wanted);

}  // namespace vostrel::cli
