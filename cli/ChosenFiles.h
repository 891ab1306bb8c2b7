#pragma once

#include <expected>
#include <filesystem>

#include "cli/CommandResult.h"
#include "rules/PinnedFile.h"

namespace vostrel::cli {

/// The file that a rule on this folder is made for, recognised later by its name, volume and inode. `file` is its name,
/// or a path to it; it must lie directly in the folder and be a plain file.
[[nodiscard]] std::expected<PinnedFile, Failure> chosenFile(const std::filesystem::path& folder,
                                                            const std::filesystem::path& file);

}  // namespace vostrel::cli
