#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "base/Date.h"
#include "filesystem/FileIdentity.h"
#include "platform/FileStatus.h"
#include "platform/FolderEntry.h"

namespace vostrel {

/// A file's time as the file system reports it: its seconds and nanoseconds in one number.
using FinderTime = Date;

/// What a search asks of each entry of a folder, in one listing.
using FinderEntry = FolderEntry;

/// Which file it was, and how much of it there was, when a search met it. Sizes are bytes.
struct FinderStamp {
    std::int32_t device = 0;
    std::uint64_t inode = 0;
    /// Its length.
    std::int64_t size = 0;
    std::int64_t allocated = 0;
    FinderTime modified;
    FinderTime changed;
    std::uint32_t linkCount = 1;
    /// Equal for clones of one another; absent, as the next two, where the file system tells nothing of clones.
    std::optional<std::uint64_t> cloneID;
    std::optional<std::uint32_t> cloneRefCount;
    /// What it shares with no clone.
    std::optional<std::int64_t> privateBytes;

    [[nodiscard]] static FinderStamp of(const FinderEntry& entry);
    [[nodiscard]] static FinderStamp of(const FileStatus& status);

    [[nodiscard]] FileIdentity identity() const { return {device, inode}; }
    /// Whether the other is the same file, and nothing was written to it or done to its names meanwhile.
    [[nodiscard]] bool isUnchanged(const FinderStamp& other) const;
    /// Whether its blocks may be those of a clone as well: not when it is known to share nothing, or to have no clone
    /// left.
    [[nodiscard]] bool mayShareSpace() const;

    friend bool operator==(const FinderStamp&, const FinderStamp&) = default;
};

/// One fresh look at a path, no link followed.
struct FinderFileRead {
    FinderStamp stamp;
    bool isRegularFile = false;
    bool isSymlink = false;
    bool isDataless = false;
};

struct FinderStampReader {
    /// Nothing when there is nothing, or it may not be looked at.
    [[nodiscard]] static std::optional<FinderFileRead> read(const std::filesystem::path& path);
};

}  // namespace vostrel
