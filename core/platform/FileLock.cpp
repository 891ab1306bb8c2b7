#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

namespace vostrel {

std::expected<OwnedDescriptor, FileLockError> lockFile(const std::filesystem::path& path) {
    using enum FileLockError::Step;
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    while (true) {
        OwnedDescriptor file(::open(path.c_str(), flags, 0600));
        struct stat facts{};
        if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
            return std::unexpected(FileLockError{open, errno, false});
        if (!S_ISREG(facts.st_mode)) return std::unexpected(FileLockError{open, EINVAL, false});
        while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EINTR) return std::unexpected(FileLockError{lock, errno, errno == EWOULDBLOCK});
        }
        if (::fstat(file.get(), &facts) != 0) return std::unexpected(FileLockError{lock, errno, false});
        if (facts.st_nlink > 1) return std::unexpected(FileLockError{open, EMLINK, false});
        // Removed between the opening and the lock: another program may have locked the file that is there now.
        if (facts.st_nlink == 1) return file;
    }
}

}  // namespace vostrel
