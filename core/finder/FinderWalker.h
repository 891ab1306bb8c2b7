#pragma once

#include <string>
#include <vector>

#include "base/Calendar.h"
#include "base/Date.h"
#include "filesystem/LinkSet.h"
#include "filesystem/SizeWalker.h"
#include "filesystem/WalkBudget.h"
#include "finder/FinderAccess.h"
#include "finder/FinderCandidates.h"
#include "finder/FinderCriteria.h"
#include "finder/FinderLimits.h"
#include "finder/FinderProgress.h"

namespace vostrel {

/// Gathers large files, old files and possible duplicates below chosen folders in one pass, in bounded memory. It opens
/// folders and no file, and enters no package and no repository; in folders that tools manage it counts and takes up
/// nothing.
///
/// What it gathers is the same for any number of the walker's helpers. A plain value that any thread may use; a call
/// takes as long as the walk and is for a thread in the background.
struct FinderWalker {
    /// Its access is not asked: `access` is.
    SizeWalker walker;
    FinderAccess access;
    FinderCriteria criteria;
    FinderLimits limits;
    /// Where other volumes are mounted, by their paths without links: never entered.
    std::vector<std::string> volumeRoots;
    Calendar calendar;

    /// Walks the folders at `roots`, absolute paths; one that lies in another is walked with that one. A budget that
    /// runs out ends the walk with what was gathered. `progress` may be none.
    [[nodiscard]] FinderCandidates walk(const std::vector<std::string>& roots, Date now, const WalkBudget& budget,
                                        FinderProgressBox* progress, LinkSet& links) const;
};

}  // namespace vostrel
