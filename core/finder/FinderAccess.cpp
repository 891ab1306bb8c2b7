#include "finder/FinderAccess.h"

#include <algorithm>

#include "finder/FinderPlaces.h"
#include "platform/SystemKind.h"

namespace vostrel {

FinderAccess FinderAccess::inHome(SpaceMapAccess base) {
    FinderAccess access{.base = std::move(base), .excludedForms = {}};
    for (const PathForm& home : access.base.base().guards().homeForms()) {
        for (const std::string_view place : finder_places::excluded(systemKind())) {
            if (const auto form = PathForm::of(home.spelledPath() / place)) access.excludedForms.push_back(*form);
        }
    }
    return access;
}

AccessDecision FinderAccess::decision(const std::string& path) const {
    const auto form = PathForm::of(path);
    if (!form) return {UnreadableReason::couldNotRead};
    if (std::ranges::any_of(excludedForms, [&](const PathForm& place) { return place.contains(*form); }))
        return {UnreadableReason::systemPlace};
    return base.decision(path);
}

}  // namespace vostrel
