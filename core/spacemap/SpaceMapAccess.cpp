#include "spacemap/SpaceMapAccess.h"

#include <algorithm>
#include <utility>

namespace vostrel {

SpaceMapAccess::SpaceMapAccess(SnapshotAccess base, Scope scope) : snapshotAccess(std::move(base)), mapScope(scope) {
    if (scope != Scope::wholeDisk) return;
    for (const char* place : {"/dev", "/proc", "/sys", "/.nofollow", "/.resolve"}) {
        if (const auto form = PathForm::of(place)) leftOutForms.push_back(*form);
    }
}

AccessDecision SpaceMapAccess::decision(const std::string& path) const {
    const auto form = PathForm::ofText(path);
    if (!form) return {UnreadableReason::couldNotRead};
    if (std::ranges::any_of(leftOutForms, [&](const PathForm& place) { return place.contains(*form); }))
        return {UnreadableReason::systemPlace};
    const AccessDecision decision = snapshotAccess.decision(*form);
    // What lies where disks are usually mounted, and is not mounted, lies on this one.
    const bool isHere = decision.blockedFor == UnreadableReason::otherDisk && !snapshotAccess.isOnOtherVolume(*form);
    const bool isSystem =
        decision.blockedFor == UnreadableReason::systemPlace && !SnapshotAccess::reachesByNumber(*form);
    return isHere || isSystem ? AccessDecision{} : decision;
}

}  // namespace vostrel
