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

}  // namespace

std::expected<StateLock, Failure> StateLock::take(const std::filesystem::path& dataFolder) {
    std::error_code problem;
    std::filesystem::create_directories(dataFolder, problem);
    if (problem) return couldNot("make the folder", dataFolder, problem.value());

    const auto path = dataFolder / "state.lock";
    OwnedDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.isOpen()) return couldNot("open", path, errno);
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return couldNot("lock", path, errno);
        if (Interrupt::requested()) return failed("Stopped before it finished.");
        std::this_thread::sleep_for(pauseBetweenTries);
    }
    return StateLock(std::move(file));
}

}  // namespace vostrel::cli
