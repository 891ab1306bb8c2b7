#pragma once

#include <string>
#include <vector>

#include "cleaning/CleanupPlanner.h"
#include "rules/Preset.h"
#include "rules/Rule.h"

namespace vostrel::cli {

/// A rule in the words of people.

/// "/home/a/Downloads"; "preset npm-cache"; "projects in /home/a/Code untouched for 90 days".
[[nodiscard]] std::string targetText(const RuleTarget& target);

/// What qualifies, a phrase each: "each file and each folder directly in it", "not modified for 30 days", … `preset` is
/// the rule's, or null.
[[nodiscard]] std::vector<std::string> filterTexts(const Rule& rule, const Preset* preset);

/// What a preset holds its rules to, a phrase each: "added 30 days ago or earlier", "only to the Trash", …
[[nodiscard]] std::vector<std::string> limitTexts(const Preset& preset);

/// "moves them to the Trash".
[[nodiscard]] std::string actionText(CleanupAction action);

/// "every day at 09:05, when an app quits (org.gimp.GIMP)"; "only by hand" where there is none.
[[nodiscard]] std::string triggersText(const std::vector<RuleTrigger>& triggers);

enum class ApprovalState { none, current, ruleChanged, foldersChanged };

/// Whether the rule is as its stored approval has it, and its folders are now.
[[nodiscard]] ApprovalState approvalState(const Rule& rule, const CleanupPlanner& planner);
[[nodiscard]] std::string approvalText(ApprovalState state);

}  // namespace vostrel::cli
