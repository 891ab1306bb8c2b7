#include "rules/Rule.h"

#include <algorithm>
#include <iterator>

#include "base/UnicodeText.h"

namespace vostrel {

bool Rule::hasUnattendedTrigger() const {
    return std::ranges::any_of(triggers, isUnattended);
}

ApprovalKey Rule::approvalKey(const std::set<RootIdentity>& roots, const PresetCatalog& catalog) const {
    ApprovalKey key;
    key.target = target;
    key.filter = filter;
    key.action = action;
    std::ranges::copy_if(triggers, std::inserter(key.unattendedTriggers, key.unattendedTriggers.end()), isUnattended);
    key.pauseWhileRunning = normalizedPauseList(pauseWhileRunning);
    key.roots = roots;
    key.definition = definition(target, catalog);
    return key;
}

bool Rule::approvalHolds(const PresetCatalog& catalog) const {
    return approval && *approval == approvalKey(approval->roots, catalog);
}

std::set<std::string> Rule::normalizedPauseList(const std::vector<std::string>& list) {
    std::set<std::string> normalized;
    for (const std::string& entry : list) {
        const auto bundleID = trimmed(entry);
        if (!bundleID.empty()) normalized.emplace(bundleID);
    }
    return normalized;
}

}  // namespace vostrel
