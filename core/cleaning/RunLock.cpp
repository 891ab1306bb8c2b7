#include "cleaning/RunLock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "platform/SystemLog.h"

namespace vostrel {

namespace {

RunLock::Refusal unavailable(const char* operation, const std::filesystem::path& file, int error) {
    logError("Clean", fmt::format("Could not {} the run lock at {}: {} ({})", operation, file.native(),
                                  std::generic_category().message(error), error));
    return {error};
}

/// That the file names the run is for others to read, so a failure changes nothing of the run.
void name(const OwnedDescriptor& file, const Uuid& run) {
    const std::string text = run.text();
    if (::ftruncate(file.get(), 0) == 0 && ::pwrite(file.get(), text.data(), text.size(), 0) < 0)
        logNotice("Clean", "The run lock does not name its run.");
}

}  // namespace

std::expected<OwnedDescriptor, RunLock::Refusal> RunLock::take(const Uuid& run) const {
    OwnedDescriptor file(::open(url.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen()) return std::unexpected(unavailable("open", url, errno));
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return std::unexpected(Refusal{});
        if (errno != EINTR) return std::unexpected(unavailable("lock", url, errno));
    }
    name(file, run);
    return file;
}

std::optional<Uuid> RunLock::runInHand() const {
    const OwnedDescriptor file(::open(url.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen() || ::flock(file.get(), LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK) return std::nullopt;
    std::array<char, 36> text{};
    const auto length = ::pread(file.get(), text.data(), text.size(), 0);
    if (length <= 0) return std::nullopt;
    return Uuid::parse(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

}  // namespace vostrel
