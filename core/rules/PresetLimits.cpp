#include "rules/PresetLimits.h"

#include "rules/RuleSentences.h"
#include "rules/TargetResolver.h"

namespace vostrel {

std::optional<std::string> presetActionProblem(CleanupAction action, const Preset& preset) {
    if (action != CleanupAction::deletePermanently || !preset.trashOnly) return std::nullopt;
    return sentences::presetOnlyTrashes;
}

std::optional<std::string> presetFilterProblem(const RuleFilter& filter, const Preset& preset) {
    auto problems = presetFilterProblems(filter, preset);
    if (problems.empty()) return std::nullopt;
    return std::move(problems.front());
}

std::vector<std::string> presetFilterProblems(const RuleFilter& filter, const Preset& preset) {
    std::vector<std::string> problems;
    if (preset.decidesNames() && !filter.includeGlobs.empty()) problems.emplace_back(sentences::presetDecidesNames);
    if (filter.scope != preset.scope)
        problems.emplace_back(preset.scope == RuleScope::allFiles ? sentences::presetCleansAnyDepth
                                                                  : sentences::presetCleansEachItem);
    return problems;
}

std::optional<std::string> rootActionProblem(CleanupAction action, const ResolvedRoot& root, const std::string& shown) {
    if (action != CleanupAction::deletePermanently || !root.trashOnly) return std::nullopt;
    if (root.linked)
        return shown +
               " leads to another folder through a link, so this rule can only move items to the Trash, not delete "
               "them.";
    if (root.setting == TargetResolver::derivedDataSettingName) return sentences::derivedDataOnlyTrashes;
    return sentences::presetOnlyTrashes;
}

}  // namespace vostrel
