#include "rules/CleanupPlan.h"

#include "base/Checked.h"

namespace vostrel {

using namespace std::chrono_literals;

bool CleanupPlan::isApprovable(Date at) const {
    const Duration age = at - createdAt;
    return age >= -60s && age <= 900s;
}

std::set<RootIdentity> CleanupPlan::rootIdentities() const {
    std::set<RootIdentity> identities;
    for (const PlanRoot& root : roots)
        identities.insert(root.identity);
    return identities;
}

std::int64_t CleanupPlan::totalBytes() const {
    std::int64_t total = 0;
    for (const PlannedItem& item : items)
        total = checkedAdd(total, item.bytes, "the size of a plan");
    return total;
}

std::vector<PlanGroup> CleanupPlan::groups() const {
    std::vector<PlanGroup> groups;
    for (const PlanRoot& root : roots) {
        PlanGroup group{groups.size(), std::nullopt, root.url, {}};
        if (roots.size() > 1) group.title = root.url.filename().native();
        groups.push_back(std::move(group));
    }
    for (const PlannedItem& item : items)
        groups.at(item.rootIndex).items.push_back(item);
    std::erase_if(groups, [](const PlanGroup& group) { return group.items.empty(); });
    return groups;
}

}  // namespace vostrel
