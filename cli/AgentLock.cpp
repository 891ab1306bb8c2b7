#include "cli/AgentLock.h"

#include <cerrno>
#include <system_error>

#include "base/SystemError.h"
#include "platform/FileLock.h"
#include "platform/FileStatus.h"

namespace vostrel::cli {

std::expected<AgentLock, Failure> AgentLock::take(const std::filesystem::path& dataFolder) {
    std::error_code problem;
    std::filesystem::create_directories(dataFolder, problem);
    if (problem) return failed(SystemError{problem.value(), "make the folder", dataFolder}.description() + ".");
    auto path = dataFolder / "agent.lock";
    auto file = lockFile(path);
    if (file) return AgentLock(std::move(path), *std::move(file));
    const auto& error = file.error();
    if (error.isHeld) return failed("Another agent already runs rules from " + dataFolder.native() + ".");
    const bool isOpen = error.step == FileLockError::Step::lock;
    return failed(SystemError{error.code, isOpen ? "lock" : "open", path}.description() + ".");
}

bool AgentLock::isInPlace() const {
    const auto held = statusOfOpen(file.get());
    const auto found = statusOfPath(path);
    // One that cannot be looked at for the moment was not replaced.
    if (!held || (!found && found.error() != ENOENT)) return true;
    return found && found->device == held->device && found->inode == held->inode;
}

}  // namespace vostrel::cli
