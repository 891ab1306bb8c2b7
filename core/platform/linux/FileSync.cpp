#include "platform/FileSync.h"

#include <unistd.h>

#include <cerrno>

namespace vostrel {

std::expected<void, int> syncFile(int openFile) {
    while (::fsync(openFile) != 0) {
        if (errno != EINTR) return std::unexpected(errno);
    }
    return {};
}

}  // namespace vostrel
