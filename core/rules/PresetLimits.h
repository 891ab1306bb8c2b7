#pragma once

#include <optional>
#include <string>
#include <vector>

#include "rules/CleanupAction.h"
#include "rules/Preset.h"
#include "rules/ResolvedRoot.h"
#include "rules/RuleFilter.h"

namespace vostrel {

/// What a preset does not let its rules do, in the sentences that tell the user. The rule editor and the planner ask
/// the same questions, so that a rule that validates is not refused for its terms later.

/// Whether the preset only trashes and the rule would delete.
[[nodiscard]] std::optional<std::string> presetActionProblem(CleanupAction action, const Preset& preset);

/// Whether the filter does not suit the preset: the first of `presetFilterProblems`.
[[nodiscard]] std::optional<std::string> presetFilterProblem(const RuleFilter& filter, const Preset& preset);
[[nodiscard]] std::vector<std::string> presetFilterProblems(const RuleFilter& filter, const Preset& preset);

/// Whether a rule would delete in a folder from which things may only go to the Trash. `shown` is the folder as the
/// user is shown it.
[[nodiscard]] std::optional<std::string> rootActionProblem(CleanupAction action, const ResolvedRoot& root,
                                                           const std::string& shown);

}  // namespace vostrel
