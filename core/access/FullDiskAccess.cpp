#include "access/FullDiskAccess.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <memory>

#include "base/SystemError.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

enum class Answer { granted, denied, nothingThere };

Answer answerOf(int failure) {
    return isMissing(failure) ? Answer::nothingThere : Answer::denied;
}

OwnedDescriptor opened(const std::filesystem::path& path, int kind) {
    while (true) {
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | kind);
        if (descriptor >= 0 || errno != EINTR) return OwnedDescriptor(descriptor);
    }
}

Answer tryOpening(const std::filesystem::path& file) {
    return opened(file, 0).isOpen() ? Answer::granted : answerOf(errno);
}

/// Opening a hidden folder may succeed; reading it does not. An empty one has been read when its end was reached.
Answer tryListing(const std::filesystem::path& folder) {
    auto descriptor = opened(folder, O_DIRECTORY);
    if (!descriptor.isOpen()) return answerOf(errno);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(descriptor.get()), &::closedir);
    if (!listing) return answerOf(errno);
    (void)descriptor.release();
    errno = 0;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is this function's own
    const bool isRead = ::readdir(listing.get()) != nullptr || errno == 0;
    return isRead ? Answer::granted : answerOf(errno);
}

}  // namespace

std::string SystemFullDiskAccess::Probe::description() const {
    return (kind == Kind::open ? "open " : "list ") + path.native();
}

SystemFullDiskAccess::SystemFullDiskAccess(std::vector<Probe> probes, Observer tried)
    : tries(std::move(probes)), observer(std::move(tried)) {}

std::vector<SystemFullDiskAccess::Probe> SystemFullDiskAccess::probes(const std::filesystem::path& home,
                                                                      const std::filesystem::path& systemRoot) {
    return {{Probe::Kind::open, systemRoot / "Library/Application Support/com.apple.TCC/TCC.db"},
            {Probe::Kind::list, home / "Library/Safari"},
            {Probe::Kind::list, home / "Library/Mail"}};
}

bool SystemFullDiskAccess::hasFullDiskAccess() const {
    for (const auto& probe : tries) {
        if (observer) observer(probe.path);
        const auto answer = probe.kind == Probe::Kind::open ? tryOpening(probe.path) : tryListing(probe.path);
        if (answer != Answer::nothingThere) return answer == Answer::granted;
    }
    return false;
}

}  // namespace vostrel
