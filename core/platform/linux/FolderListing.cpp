#include "platform/FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/linux/StatusReading.h"

namespace vostrel {

namespace {

// What getdents64 writes; the C library declares the structure only for its own reader.
struct KernelEntry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char firstOfName;

    [[nodiscard]] const char* name() const { return &firstOfName; }
};

bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

/// Sizes only: `fstatat` is a few per cent cheaper than `statx`. Returns an error number.
int readSizes(int openFolder, const char* name, FolderEntry& entry) {
    struct stat found{};
    if (fstatat(openFolder, name, &found, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) return errno;
    entry.type = linux_platform::entryType(found.st_mode);
    entry.fileID = found.st_ino;
    entry.linkCount = static_cast<std::uint32_t>(found.st_nlink);
    entry.allocated = linux_platform::allocatedBytes(static_cast<std::uint64_t>(found.st_blocks));
    return 0;
}

int readFacts(int openFolder, const char* name, FolderEntry& entry) {
    const auto found = linux_platform::readStatus(openFolder, name, 0);
    if (!found) return found.error();
    entry.type = found->type;
    entry.fileID = found->inode;
    entry.linkCount = found->linkCount;
    entry.allocated = found->allocated;
    entry.mountStatus = found->isMountRoot ? entryIsMountPoint : 0;
    entry.device = found->device;
    entry.modified = found->modified;
    entry.changed = found->changed;
    entry.accessed = found->accessed;
    entry.added = found->added;
    entry.length = found->length;
    return 0;
}

void report(int openFolder, const KernelEntry& listed, ListingDetail detail, EntrySink& sink) {
    FolderEntry entry;
    entry.name = listed.name();
    entry.fileID = listed.inode;
    if (listed.type == DT_DIR) {
        entry.type = EntryType::folder;
    } else if (listed.type == DT_LNK) {
        entry.type = EntryType::link;
    } else if (detail == ListingDetail::names && listed.type != DT_UNKNOWN) {
        entry.type = linux_platform::entryType(DTTOIF(listed.type));
    } else {
        entry.error = detail >= ListingDetail::facts ? readFacts(openFolder, listed.name(), entry)
                                                     : readSizes(openFolder, listed.name(), entry);
        if (entry.error == ENOENT) return;
    }
    sink.entry(entry);
}

}  // namespace

FolderListing::FolderListing(ListingDetail wanted) : detail(wanted), buffer(bufferSize) {}

std::expected<FolderListing::Step, int> FolderListing::readSome(int openFolder, EntrySink& sink) {
    const long filled = syscall(SYS_getdents64, openFolder, buffer.data(), bufferSize);
    if (filled < 0) return std::unexpected(errno);
    for (long at = 0; at < filled;) {
        const auto* listed = reinterpret_cast<const KernelEntry*>(buffer.data() + at);
        at += listed->length;
        if (!isSelfOrParent(listed->name())) report(openFolder, *listed, detail, sink);
    }
    return filled == 0 ? Step::end : Step::more;
}

}  // namespace vostrel
