#pragma once

#include <filesystem>
#include <set>

#include "cli/Agreement.h"
#include "cli/CommandResult.h"
#include "cli/Session.h"
#include "finder/FinderResult.h"

namespace vostrel::cli {

/// The surplus copies of each group: on each disk all but the first, and but those that something blocks;
/// none where no copy is known to stay.
[[nodiscard]] std::set<std::filesystem::path> surplusCopies(const FinderResult& result);

/// What becomes of the other chosen files when one has to stay.
enum class WhenOneStays { nothingGoes, othersGo };

/// Moves files that a search found to the Trash, each checked again right before it goes, and of duplicates compared
/// byte for byte with a copy that stays.
[[nodiscard]] CommandResult trashFound(Session& session, const FinderResult& result,
                                       const std::set<std::filesystem::path>& chosen, WhenOneStays choice,
                                       Consent consent);

}  // namespace vostrel::cli
