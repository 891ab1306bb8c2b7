#include "platform/FolderOpening.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

constexpr int listingFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

int openResolving(int base, const char* path, int flags, std::uint64_t resolve) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags);
    how.resolve = resolve;
    return static_cast<int>(syscall(SYS_openat2, base, path, &how, sizeof how));
}

/// Only a folder's owner may ask for its access date to be left alone; for others it is opened without asking.
int openKeepingAccessDate(int base, const char* path, std::uint64_t resolve) {
    const int descriptor = openResolving(base, path, listingFlags | O_NOATIME, resolve);
    if (descriptor >= 0 || errno != EPERM) return descriptor;
    return openResolving(base, path, listingFlags, resolve);
}

constexpr std::uint64_t withoutLinks = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
constexpr std::uint64_t belowAndOnTheMount = withoutLinks | RESOLVE_BENEATH | RESOLVE_NO_XDEV;
constexpr std::size_t longestPath = PATH_MAX - 1;

/// A path longer than one call takes: goes down in pieces, each opened below the one before.
int openLongPath(const std::string& path) {
    OwnedDescriptor above;
    std::size_t start = 0;
    while (path.size() - start > longestPath) {
        const std::size_t end = path.rfind('/', start + longestPath);
        if (end == std::string::npos || end <= start) {
            errno = ENAMETOOLONG;
            return -1;
        }
        const std::string piece = path.substr(start, end - start);
        const int base = above.isOpen() ? above.get() : AT_FDCWD;
        above.reset(openResolving(base, piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC, withoutLinks));
        if (!above.isOpen()) return -1;
        start = end + 1;
    }
    return openKeepingAccessDate(above.get(), path.c_str() + start, withoutLinks);
}

}  // namespace

int openFolder(const char* path) {
    if (std::strlen(path) > longestPath) return openLongPath(path);
    return openKeepingAccessDate(AT_FDCWD, path, withoutLinks);
}

int openSubfolder(int openFolder, const char* name) {
    return openKeepingAccessDate(openFolder, name, belowAndOnTheMount);
}

int openParentFolder(int openFolder) {
    return openKeepingAccessDate(openFolder, "..", withoutLinks | RESOLVE_NO_XDEV);
}

int locateBelow(int openFolder, const char* path) {
    return openResolving(openFolder, path, O_PATH | O_CLOEXEC, belowAndOnTheMount);
}

}  // namespace vostrel
