#pragma once

#include <optional>

#include "cleaning/RunSentences.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel {

/// The sentence about a plan of the rule that opened other folders than those of the rule's approval, which it has.
[[nodiscard]] inline std::optional<const char*> approvedFoldersProblem(const Rule& rule, const CleanupPlan& plan) {
    const auto roots = plan.rootIdentities();
    if (roots == rule.approval->roots) return std::nullopt;
    const bool isOneFolder = roots.size() == 1 && rule.approval->roots.size() == 1;
    return isOneFolder ? sentences::folderReplaced : sentences::foldersChanged;
}

}  // namespace vostrel
