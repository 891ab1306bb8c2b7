#include "cleaning/RunLock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/FileLock.h"
#include "platform/SystemLog.h"

namespace vostrel {

namespace {

constexpr int mostAttempts = 500;
constexpr std::chrono::milliseconds pauseBetweenAttempts{2};

RunLock::Refusal unavailable(const char* operation, const std::filesystem::path& file, int error) {
    logError("Clean", fmt::format("Could not {} the run lock at {}: {} ({})", operation, file.native(),
                                  std::generic_category().message(error), error));
    return {error};
}

OwnedDescriptor openedToAsk(const std::filesystem::path& file) {
    return OwnedDescriptor(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

/// Who asks holds the lock together with others for a moment.
bool isLocked(const OwnedDescriptor& file) {
    return file.isOpen() && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

/// That the file names the run is for others to read, so a failure changes nothing of the run.
void name(const OwnedDescriptor& file, const Uuid& run) {
    const std::string text = run.text();
    if (::ftruncate(file.get(), 0) == 0 && ::pwrite(file.get(), text.data(), text.size(), 0) < 0)
        logNotice("Clean", "The run lock does not name its run.");
}

}  // namespace

std::expected<OwnedDescriptor, RunLock::Refusal> RunLock::take(const Uuid& run) const {
    auto file = lockFile(url);
    for (int attempt = 1; !file && file.error().isHeld && !isHeld() && attempt < mostAttempts; ++attempt) {
        std::this_thread::sleep_for(pauseBetweenAttempts);
        file = lockFile(url);
    }
    if (!file) {
        const FileLockError& error = file.error();
        if (error.isHeld) return std::unexpected(Refusal{});
        const bool isOpen = error.step == FileLockError::Step::lock;
        return std::unexpected(unavailable(isOpen ? "lock" : "open", url, error.code));
    }
    name(*file, run);
    return *std::move(file);
}

bool RunLock::isHeld() const {
    return isLocked(openedToAsk(url));
}

std::optional<Uuid> RunLock::runInHand() const {
    const OwnedDescriptor file = openedToAsk(url);
    if (!isLocked(file)) return std::nullopt;
    std::array<char, 36> text{};
    const auto length = ::pread(file.get(), text.data(), text.size(), 0);
    if (length <= 0) return std::nullopt;
    return Uuid::parse(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

}  // namespace vostrel
