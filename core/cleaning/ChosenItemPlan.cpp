#include "cleaning/ChosenItemPlan.h"

#include <string>
#include <system_error>
#include <vector>

#include "base/Uuid.h"
#include "rules/Rule.h"

namespace vostrel {

namespace fs = std::filesystem;

namespace {

/// The pattern that matches this name only, and names that are compared as equal to it.
std::string patternFor(const std::string& name) {
    std::string pattern;
    for (const char letter : name) {
        if (letter == '*' || letter == '?' || letter == '[' || letter == ']' || letter == '\\') pattern += '\\';
        pattern += letter;
    }
    return pattern;
}

}  // namespace

std::expected<CleanupPlan, PlanError> planOfChosenItem(const CleanupPlanner& planner, const fs::path& item, Date now,
                                                       const std::function<bool()>& isCancelled) {
    std::error_code problem;
    const fs::path folder = fs::canonical(item.parent_path(), problem);
    if (problem || !item.has_filename()) return std::unexpected(PlanError::of(PlanError::Kind::rootMissing));
    Rule rule;
    rule.id = Uuid::random();
    rule.target = FolderTarget{folder};
    rule.filter.includeGlobs = {patternFor(item.filename())};
    rule.action = CleanupAction::trash;
    auto plan = planner.plan(rule, now, isCancelled);
    if (!plan) return plan;
    const fs::path chosen = folder / item.filename();
    std::erase_if(plan->items, [&](const PlannedItem& planned) { return planned.url != chosen; });
    std::erase_if(plan->skipped, [&](const SkippedItem& left) { return left.url != chosen; });
    return plan;
}

}  // namespace vostrel
