#pragma once

#include <filesystem>
#include <optional>

#include "cli/CommandResult.h"
#include "cli/Session.h"
#include "spacemap/HiddenSpace.h"
#include "spacemap/SpaceTree.h"

namespace vostrel::cli {

/// Whether the page of a map may be written to this file: nothing is there, or an earlier page. Asked before a scan,
/// so that nobody waits for a page that then finds no place.
[[nodiscard]] CommandResult mayWritePage(const Session& session, const std::filesystem::path& file);

/// Writes the map as one page, or leaves the file as it was.
[[nodiscard]] CommandResult writePage(Session& session, const SpaceTree& tree, const std::optional<HiddenSpace>& hidden,
                                      const std::filesystem::path& file);

}  // namespace vostrel::cli
