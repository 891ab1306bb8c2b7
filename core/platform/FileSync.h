#pragma once

#include <expected>
#include <filesystem>

namespace vostrel {

/// Makes what was written survive a loss of power: returns when the disk has it. Fails with the error number.

/// The content and the facts of an open file.
[[nodiscard]] std::expected<void, int> syncFile(int openFile);

/// The names in a folder: that a file made or renamed there is found again.
[[nodiscard]] std::expected<void, int> syncFolder(const std::filesystem::path& folder);

}  // namespace vostrel
