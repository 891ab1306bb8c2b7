#include "platform/FileRename.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace vostrel {

namespace {

std::expected<void, int> outcome(int result) {
    if (result != 0) return std::unexpected(errno);
    return {};
}

/// For the few file systems that know no exclusive rename: looks first, and leaves a moment in between.
std::expected<void, int> renameAfterLooking(const std::filesystem::path& from, const std::filesystem::path& to) {
    struct stat taken{};
    if (::lstat(to.c_str(), &taken) == 0) return std::unexpected(EEXIST);
    return outcome(::rename(from.c_str(), to.c_str()));
}

}  // namespace

std::expected<void, int> renameExclusive(const std::filesystem::path& from, const std::filesystem::path& to) {
    const auto renamed = outcome(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
    const bool isUnsupported = !renamed && (renamed.error() == EINVAL || renamed.error() == ENOSYS);
    return isUnsupported ? renameAfterLooking(from, to) : renamed;
}

}  // namespace vostrel
