#pragma once

#include <string>
#include <utility>
#include <vector>

#include "filesystem/AccessDecision.h"
#include "filesystem/PathForm.h"
#include "spacemap/SpaceMapAccess.h"

namespace vostrel {

/// Which places a search may open: what a map of the folder may, but for places that hold nothing to offer. A value;
/// any thread.
struct FinderAccess {
    SpaceMapAccess base;
    std::vector<PathForm> excludedForms;

    /// For searches in one home, on this system.
    [[nodiscard]] static FinderAccess inHome(SpaceMapAccess base);

    [[nodiscard]] AccessDecision decision(const std::string& path) const;
};

}  // namespace vostrel
