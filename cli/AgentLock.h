#pragma once

#include <expected>
#include <filesystem>
#include <utility>

#include "cli/CommandResult.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel::cli {

/// Held as long as an agent works on a data folder: two would run each rule twice.
class AgentLock {
public:
    /// Fails when another agent holds it.
    [[nodiscard]] static std::expected<AgentLock, Failure> take(const std::filesystem::path& dataFolder);

    /// Whether the locked file is still the data folder's. It is not when that folder was moved away or replaced: then
    /// another agent may hold the lock of the new one.
    [[nodiscard]] bool isInPlace() const;

private:
    AgentLock(std::filesystem::path at, OwnedDescriptor locked) : path(std::move(at)), file(std::move(locked)) {}

    std::filesystem::path path;
    OwnedDescriptor file;
};

}  // namespace vostrel::cli
