#pragma once

#include <optional>
#include <string>

#include "base/Date.h"
#include "filesystem/FileIdentity.h"
#include "filesystem/TreeFacts.h"
#include "platform/FolderEntry.h"

namespace vostrel {

/// Something that a walk met as an item: a file, or a folder with everything inside it.
struct MeasuredItem {
    /// What kept the walk from measuring it whole, in the order in which the walk looks.
    enum class Trouble {
        none,
        isLink,
        onOtherVolume,
        /// The guards refuse the item itself; `facts.protectedRefusal` is their sentence.
        isProtected,
        isExcluded,
        /// A folder that does not look like what the tool makes.
        isUnrecognised,
        couldNotRead,
        /// The budget ran out before it was measured, or while it was.
        notMeasuredInTime,
        /// It is not any more what it was when the walk came to it.
        changedMeanwhile,
    };

    /// The path relative to the folder that was walked; empty for that folder itself.
    std::string relativePath;
    Trouble trouble = Trouble::none;
    EntryType type = EntryType::none;
    FileIdentity identity;
    /// The folder that contains it.
    FileIdentity parent;
    TreeFacts facts;
    /// The item's own date of arrival, or that of the newest folder around it: what lies in a folder arrived with it.
    std::optional<Date> added;
    /// The item's own.
    Date accessed;
};

}  // namespace vostrel
