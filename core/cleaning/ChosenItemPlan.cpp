#include "cleaning/ChosenItemPlan.h"

#include <system_error>

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
    // A pattern has no space at its ends.
    if (pattern.ends_with(' ')) pattern.replace(pattern.size() - 1, 1, "[ ]");
    if (pattern.starts_with(' ')) pattern.replace(0, 1, "[ ]");
    return pattern;
}

}  // namespace

std::expected<CleanupPlan, PlanError> planOfChosenItems(const CleanupPlanner& planner, const fs::path& folder,
                                                        const std::set<std::string>& names, Date now,
                                                        const std::function<bool()>& isCancelled) {
    Rule rule;
    rule.id = Uuid::random();
    rule.target = FolderTarget{folder};
    for (const std::string& name : names)
        rule.filter.includeGlobs.push_back(patternFor(name));
    rule.action = CleanupAction::trash;
    auto plan = planner.plan(rule, now, isCancelled);
    if (!plan) return plan;
    const auto isOther = [&](const auto& item) {
        return item.url.parent_path() != folder || !names.contains(item.url.filename());
    };
    std::erase_if(plan->items, isOther);
    std::erase_if(plan->skipped, isOther);
    return plan;
}

std::expected<CleanupPlan, PlanError> planOfChosenItem(const CleanupPlanner& planner, const fs::path& item, Date now,
                                                       const std::function<bool()>& isCancelled) {
    std::error_code problem;
    const fs::path folder = fs::canonical(item.parent_path(), problem);
    if (problem || !item.has_filename()) return std::unexpected(PlanError::of(PlanError::Kind::rootMissing));
    return planOfChosenItems(planner, folder, {item.filename()}, now, isCancelled);
}

}  // namespace vostrel
