#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "filesystem/RootIdentity.h"
#include "filesystem/UnreadableReason.h"
#include "finder/FinderPath.h"
#include "finder/FinderStamp.h"

namespace vostrel {

/// A file that a walk took up.
struct WalkedFile {
    FinderPath path;
    FinderStamp stamp;
    /// When it arrived in its folder, where the file system records that.
    std::optional<FinderTime> added;

    /// The newest of the dates that the file itself has.
    [[nodiscard]] Date newestDate() const { return added ? std::max(stamp.modified, *added) : stamp.modified; }

    friend bool operator==(const WalkedFile&, const WalkedFile&) = default;
};

/// A file that may have a duplicate.
struct DuplicatePoolEntry {
    FinderPath path;
    FinderStamp stamp;

    friend bool operator==(const DuplicatePoolEntry&, const DuplicatePoolEntry&) = default;
};

/// A folder that was searched.
struct FinderRootInfo {
    /// As it was chosen.
    std::string given;
    /// With its links resolved.
    std::string path;
    std::optional<RootIdentity> identity;

    friend bool operator==(const FinderRootInfo&, const FinderRootInfo&) = default;
};

/// Why a chosen folder was not searched.
struct FinderRootProblem {
    enum class Kind { unreadable, notAFolder, missing, link };

    Kind kind = Kind::missing;
    /// Of an unreadable one.
    std::optional<UnreadableReason> reason;

    friend bool operator==(const FinderRootProblem&, const FinderRootProblem&) = default;
};

struct FinderUnsearchedRoot {
    std::string given;
    FinderRootProblem problem;

    friend bool operator==(const FinderUnsearchedRoot&, const FinderUnsearchedRoot&) = default;
};

using FinderRootState = std::variant<FinderRootInfo, FinderUnsearchedRoot>;

/// A place that a search does not enter.
struct FinderBlockedPlace {
    std::string path;
    UnreadableReason reason = UnreadableReason::unknown;

    friend bool operator==(const FinderBlockedPlace&, const FinderBlockedPlace&) = default;
};

/// What a walk gathered, within its bounds, and what it passed over. The counts are of files unless they say otherwise;
/// a file of many names counts once.
struct FinderCandidates {
    std::vector<FinderRootState> roots;
    /// The largest, in no particular order.
    std::vector<WalkedFile> large;
    /// Of all large files, kept or not.
    std::int64_t largeCount = 0;
    std::int64_t largeBytes = 0;
    /// The largest of those whose own dates are old.
    std::vector<WalkedFile> oldCandidates;
    /// Those that were not kept.
    std::int64_t oldOverflow = 0;
    /// The longest.
    std::vector<DuplicatePoolEntry> pool;
    std::int64_t poolOverflow = 0;
    std::int64_t filesSeen = 0;
    std::int64_t foldersRead = 0;
    std::int64_t linksNotFollowed = 0;
    /// Entries and folders that could not be read.
    std::int64_t unreadable = 0;
    /// Folders on other volumes, and folders too deep.
    std::int64_t notMeasured = 0;
    /// The first of the places that macOS keeps closed, and how many there were.
    std::vector<std::string> needsFullDiskAccess;
    std::int64_t needsFullDiskAccessCount = 0;
    /// The first of the places that are left out on purpose.
    std::vector<std::string> leftOut;
    /// Photo, music and video libraries.
    std::int64_t leftOutLibraries = 0;
    std::int64_t packagesSkipped = 0;
    std::int64_t repositoriesSkipped = 0;
    std::int64_t cloudOnlyFiles = 0;
    /// The walk ended before it had seen everything.
    bool stopped = false;

    friend bool operator==(const FinderCandidates&, const FinderCandidates&) = default;
};

}  // namespace vostrel
