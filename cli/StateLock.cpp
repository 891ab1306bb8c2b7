#include "cli/StateLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "base/SystemError.h"
#include "cli/Interrupt.h"

namespace vostrel::cli {

namespace {

constexpr auto pauseBetweenTries = std::chrono::milliseconds(20);

std::unexpected<Failure> couldNot(const char* operation, const std::filesystem::path& path, int code) {
    return failed(SystemError{code, operation, path}.description() + ".");
}

std::filesystem::path lockFileIn(const std::filesystem::path& dataFolder) {
    return dataFolder / "state.lock";
}

OwnedDescriptor opened(const std::filesystem::path& lockFile) {
    return OwnedDescriptor(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
}

/// Waits until nobody else holds it.
CommandResult lock(const OwnedDescriptor& file, const std::filesystem::path& path) {
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return couldNot("lock", path, errno);
        if (Interrupt::requested()) return failed(Interrupt::sentence);
        std::this_thread::sleep_for(pauseBetweenTries);
    }
    return {};
}

}  // namespace

std::expected<StateLock, Failure> StateLock::take(const std::filesystem::path& dataFolder) {
    std::error_code problem;
    std::filesystem::create_directories(dataFolder, problem);
    if (problem) return couldNot("make the folder", dataFolder, problem.value());

    const auto path = lockFileIn(dataFolder);
    OwnedDescriptor file = opened(path);
    if (!file.isOpen()) return couldNot("open", path, errno);
    if (auto locked = lock(file, path); !locked) return std::unexpected(std::move(locked.error()));
    return StateLock(std::move(file));
}

std::expected<std::optional<StateLock>, Failure> StateLock::takeToRead(const std::filesystem::path& dataFolder) {
    const auto path = lockFileIn(dataFolder);
    OwnedDescriptor file = opened(path);
    if (!file.isOpen()) {
        const bool canDoWithout = errno == ENOENT || errno == EROFS || errno == EACCES;
        if (!canDoWithout) return couldNot("open", path, errno);
        return std::optional<StateLock>();
    }
    if (auto locked = lock(file, path); !locked) return std::unexpected(std::move(locked.error()));
    return std::optional(StateLock(std::move(file)));
}

}  // namespace vostrel::cli
