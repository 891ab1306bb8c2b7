#include "platform/UncachedReading.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>

#include "platform/FolderOpening.h"

namespace vostrel {

namespace {

// Since Linux 6.14, where the file system takes part; the C library's headers are older.
constexpr int dontCache = 0x80;

}  // namespace

OwnedDescriptor openForReading(const std::filesystem::path& path) {
    const OwnedDescriptor folder(openFolder(path.parent_path()));
    if (!folder.isOpen()) return {};
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const auto name = path.filename();
    OwnedDescriptor file(::openat(folder.get(), name.c_str(), flags | O_NOATIME));
    if (file.isOpen() || errno != EPERM) return file;
    // Only its owner may leave a file's access date alone.
    return OwnedDescriptor(::openat(folder.get(), name.c_str(), flags));
}

void turnOffCaching(int file) {
    // Dropping the pages after reading would also drop those that others had put there.
    static_cast<void>(::posix_fadvise(file, 0, 0, POSIX_FADV_NOREUSE));
}

std::int64_t readAt(int file, std::span<std::byte> into, std::int64_t offset) {
    const iovec place{.iov_base = into.data(), .iov_len = into.size()};
    int flags = dontCache;
    while (true) {
        const ssize_t count = ::preadv2(file, &place, 1, offset, flags);
        if (count >= 0) return count;
        if (errno == EOPNOTSUPP && flags != 0) {
            flags = 0;
        } else if (errno != EINTR) {
            return -1;
        }
    }
}

}  // namespace vostrel
