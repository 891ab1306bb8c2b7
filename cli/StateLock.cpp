#include "cli/StateLock.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "base/SystemError.h"
#include "cli/Interrupt.h"
#include "platform/FileLock.h"

namespace vostrel::cli {

namespace {

constexpr auto pauseBetweenTries = std::chrono::milliseconds(20);

std::unexpected<Failure> couldNot(const char* operation, const std::filesystem::path& path, int code) {
    return failed(SystemError{code, operation, path}.description() + ".");
}

std::filesystem::path lockFileIn(const std::filesystem::path& dataFolder) {
    return dataFolder / "state.lock";
}

Failure failureOf(const FileLockError& error, const std::filesystem::path& path) {
    if (error.isHeld) return failed(Interrupt::sentence).error();
    return couldNot(error.step == FileLockError::Step::open ? "open" : "lock", path, error.code).error();
}

/// Waits until nobody else holds it, or for Ctrl-C.
std::expected<OwnedDescriptor, FileLockError> locked(const std::filesystem::path& path) {
    while (true) {
        auto file = lockFile(path);
        if (file || !file.error().isHeld || Interrupt::requested()) return file;
        std::this_thread::sleep_for(pauseBetweenTries);
    }
}

}  // namespace

std::expected<StateLock, Failure> StateLock::take(const std::filesystem::path& dataFolder) {
    std::error_code problem;
    std::filesystem::create_directories(dataFolder, problem);
    if (problem) return couldNot("make the folder", dataFolder, problem.value());

    const auto path = lockFileIn(dataFolder);
    auto file = locked(path);
    if (!file) return std::unexpected(failureOf(file.error(), path));
    return StateLock(*std::move(file));
}

std::expected<std::optional<StateLock>, Failure> StateLock::takeToRead(const std::filesystem::path& dataFolder) {
    const auto path = lockFileIn(dataFolder);
    auto file = locked(path);
    if (file) return std::optional(StateLock(*std::move(file)));
    const int code = file.error().code;
    const bool canDoWithout =
        file.error().step == FileLockError::Step::open && (code == ENOENT || code == EROFS || code == EACCES);
    if (canDoWithout) return std::optional<StateLock>();
    return std::unexpected(failureOf(file.error(), path));
}

}  // namespace vostrel::cli
