#include "platform/FileSync.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

std::expected<void, int> syncFolder(const std::filesystem::path& folder) {
    const OwnedDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen()) return std::unexpected(errno);
    return syncFile(opened.get());
}

}  // namespace vostrel
