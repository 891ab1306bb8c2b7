#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Date.h"

namespace vostrel {

/// What measuring adds up of an item: of a file, or of a folder with everything inside it.
struct TreeFacts {
    /// Blocks of everything but folders and links, a hard-linked file once for all items that are measured together.
    std::int64_t bytes = 0;
    /// Blocks of the hard-linked files in it that another item was already counted for.
    std::int64_t sharedBytes = 0;
    std::int64_t fileCount = 0;
    std::int64_t unreadableCount = 0;
    Date newestModified = Date::distantPast();
    /// The newest change of any kind: of content or status, or an arrival.
    Date newestUse = Date::distantPast();
    /// The guards' sentence about the first protected thing met inside.
    std::optional<std::string> protectedRefusal;
    bool containsExcluded = false;
    bool crossesVolume = false;
    /// Something's content is only in the cloud.
    bool containsDataless = false;

    /// Its size by itself, whatever else was measured.
    [[nodiscard]] std::int64_t ownBytes() const;

    void addFile(std::int64_t allocated);
    void addShared(std::int64_t allocated);
    void addDates(Date modified, Date changed, std::optional<Date> added);
    void addUnreadable();
    void add(const TreeFacts& below);

    friend bool operator==(const TreeFacts&, const TreeFacts&) = default;
};

}  // namespace vostrel
