#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/Trash.h"

namespace vostrel::linux_platform {

/// The calls of a move to the Trash that tests let fail, or be overtaken by another program.
struct TrashCalls {
    /// Makes what was written to an open file survive a loss of power.
    std::function<std::expected<void, int>(int opened)> sync;
    /// Renames an entry of one open folder into another, never onto something else. 0, or the error number.
    std::function<int(int from, const char* name, int to, const char* newName)> rename;

    [[nodiscard]] static TrashCalls ofSystem();
};

[[nodiscard]] std::expected<std::optional<std::filesystem::path>, std::string> moveToTrash(
    const TrashItem& item, const std::filesystem::path& home, Date now, const TrashCalls& calls);

}  // namespace vostrel::linux_platform
