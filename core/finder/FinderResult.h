#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "finder/DuplicateGroup.h"
#include "finder/FinderCandidates.h"
#include "finder/FinderCriteria.h"

namespace vostrel {

/// When a file was last opened, as far as anything tells.
struct LastOpened {
    enum class Source {
        /// Spotlight's record of its last use.
        spotlight,
        /// The newest of the file's own dates.
        modifiedOrAdded,
    };

    Date date;
    Source source = Source::modifiedOrAdded;

    friend bool operator==(const LastOpened&, const LastOpened&) = default;
};

/// A file that a search lists.
struct FinderFile {
    FinderPath path;
    FinderStamp stamp;
    /// Of old files.
    std::optional<LastOpened> lastOpened;
    /// Why it may not be moved to the Trash, if so.
    std::optional<std::string> trashBlock;

    friend bool operator==(const FinderFile&, const FinderFile&) = default;
};

/// What is searched, and when.
struct FinderRequest {
    /// Absolute paths of folders.
    std::vector<std::string> roots;
    FinderCriteria criteria;
    Date now;

    friend bool operator==(const FinderRequest&, const FinderRequest&) = default;
};

struct FinderResult {
    enum class Ending { complete, cancelled, deadline };

    FinderRequest request;
    bool fullDiskAccess = false;
    /// Its lists of files have become those below.
    FinderCandidates walk;
    /// The largest first, both.
    std::vector<FinderFile> large;
    std::vector<FinderFile> old;
    /// Old candidates whose dates could not be checked in time.
    std::int64_t oldNotChecked = 0;
    /// Those first with which most would be free.
    std::vector<DuplicateGroup> groups;
    /// Its groups have become those above.
    DuplicateOutcome duplicates;
    Ending ending = Ending::complete;
    /// In seconds.
    double duration = 0;

    friend bool operator==(const FinderResult&, const FinderResult&) = default;
};

}  // namespace vostrel
