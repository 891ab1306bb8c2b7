#include "platform/FileStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <limits>

#include "base/Checked.h"
#include "platform/linux/StatusReading.h"

namespace vostrel {

namespace linux_platform {

namespace {

Date dateOf(const struct statx_timestamp& time) {
    return Date::fromSeconds(time.tv_sec, time.tv_nsec);
}

}  // namespace

std::int32_t deviceNumber(unsigned major, unsigned minor) {
    return static_cast<std::int32_t>((major & 0xFFFU) << 20U | (minor & 0xFFFFFU));
}

EntryType entryType(unsigned mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return EntryType::file;
        case S_IFDIR:
            return EntryType::folder;
        case S_IFLNK:
            return EntryType::link;
        case S_IFBLK:
            return EntryType::blockDevice;
        case S_IFCHR:
            return EntryType::characterDevice;
        case S_IFSOCK:
            return EntryType::socket;
        case S_IFIFO:
            return EntryType::fifo;
        default:
            return EntryType::none;
    }
}

std::int64_t allocatedBytes(std::uint64_t blocks) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() / 512);
    if (blocks > most) endOnOverflow("the size of a file");
    return static_cast<std::int64_t>(blocks * 512);
}

std::expected<FileStatus, int> readStatus(int folder, const char* path, int flags) {
    struct statx found{};
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_MNT_ID;
    if (statx(folder, path, flags | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, wanted, &found) != 0) {
        return std::unexpected(errno);
    }
    FileStatus status;
    status.type = entryType(found.stx_mode);
    status.device = deviceNumber(found.stx_dev_major, found.stx_dev_minor);
    status.inode = found.stx_ino;
    status.mount = (found.stx_mask & STATX_MNT_ID) != 0 ? found.stx_mnt_id : 0;
    status.isMountRoot = (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    status.linkCount = found.stx_nlink;
    status.allocated = allocatedBytes(found.stx_blocks);
    status.length = static_cast<std::int64_t>(found.stx_size);
    status.owner = found.stx_uid;
    status.mode = static_cast<std::uint16_t>(found.stx_mode & 07777U);
    status.modified = dateOf(found.stx_mtime);
    status.changed = dateOf(found.stx_ctime);
    status.accessed = dateOf(found.stx_atime);
    // An entry's status changes when it arrives in a folder; which file systems keep that is `recordsAddedDates`.
    status.added = status.changed;
    return status;
}

}  // namespace linux_platform

std::expected<FileStatus, int> statusOfPath(const std::filesystem::path& path) {
    const bool endsWithSlash = !path.has_filename() && path.has_relative_path();
    return linux_platform::readStatus(AT_FDCWD, (endsWithSlash ? path.parent_path() : path).c_str(), 0);
}

std::expected<FileStatus, int> statusOfOpen(int descriptor) {
    return linux_platform::readStatus(descriptor, "", AT_EMPTY_PATH);
}

std::expected<FileStatus, int> statusOfEntry(int openFolder, const char* name) {
    return linux_platform::readStatus(openFolder, name, 0);
}

}  // namespace vostrel
