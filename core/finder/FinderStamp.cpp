#include "finder/FinderStamp.h"

#include <tuple>

namespace vostrel {

FinderStamp FinderStamp::of(const FinderEntry& entry) {
    return {.device = entry.device,
            .inode = entry.fileID,
            .size = entry.length,
            .allocated = entry.allocated,
            .modified = entry.modified,
            .changed = entry.changed,
            .linkCount = entry.linkCount,
            .cloneID = entry.cloneID,
            .cloneRefCount = entry.cloneRefCount,
            .privateBytes = entry.privateBytes};
}

FinderStamp FinderStamp::of(const FileStatus& status) {
    return {.device = status.device,
            .inode = status.inode,
            .size = status.length,
            .allocated = status.allocated,
            .modified = status.modified,
            .changed = status.changed,
            .linkCount = status.linkCount,
            .cloneID = {},
            .cloneRefCount = {},
            .privateBytes = {}};
}

bool FinderStamp::isUnchanged(const FinderStamp& other) const {
    const auto facts = [](const FinderStamp& stamp) {
        return std::tie(stamp.device, stamp.inode, stamp.size, stamp.modified, stamp.changed, stamp.linkCount);
    };
    return facts(*this) == facts(other);
}

bool FinderStamp::mayShareSpace() const {
    const bool hasNoClones = cloneRefCount && *cloneRefCount < 2;
    const bool sharesNothing = privateBytes && *privateBytes >= allocated;
    return cloneID.value_or(0) != 0 && !hasNoClones && !sharesNothing;
}

std::optional<FinderFileRead> FinderStampReader::read(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return std::nullopt;
    return FinderFileRead{.stamp = FinderStamp::of(*status),
                          .isRegularFile = status->type == EntryType::file,
                          .isSymlink = status->type == EntryType::link,
                          .isDataless = status->isDataless};
}

}  // namespace vostrel
