#pragma once

#include <filesystem>
#include <vector>

#include "cli/Agreement.h"
#include "cli/CommandLine.h"
#include "cli/CommandResult.h"
#include "cli/Session.h"

namespace vostrel::cli {

/// Moves items inside the mapped folder to the Trash, each through a preview of its own, after showing them and asking.
/// Nothing is moved when one of them may not be.
[[nodiscard]] CommandResult trashFromMap(Session& session, const std::filesystem::path& mapped,
                                         const std::vector<std::filesystem::path>& items, Consent consent);

}  // namespace vostrel::cli
