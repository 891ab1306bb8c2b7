#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Date.h"

namespace vostrel {

/// What an entry of a folder is. The numbers are the vnode types that macOS's bulk listing reports.
enum class EntryType : std::uint32_t {
    none = 0,
    file = 1,
    folder = 2,
    blockDevice = 3,
    characterDevice = 4,
    link = 5,
    socket = 6,
    fifo = 7,
    bad = 8,
};

/// Bits of `FolderEntry::mountStatus`.
inline constexpr std::uint32_t entryIsMountPoint = 1;
inline constexpr std::uint32_t entryTriggersMount = 2;

/// How much a listing asks of each entry: nothing but name, type and number, what adding up sizes needs, also the dates
/// and the device, or also the length and what is shared with clones.
enum class ListingDetail { names, sizes, facts, everything };

/// One entry as a folder listing reports it. The name is valid only while the entry is being handed over.
///
/// `allocated` counts blocks on disk, never the length. A subfolder carries no sizes and, on Linux, nothing but its
/// name, type and number: it is looked at when it is opened.
struct FolderEntry {
    std::string_view name;
    EntryType type = EntryType::none;
    std::uint64_t fileID = 0;
    std::uint32_t linkCount = 1;
    std::int64_t allocated = 0;
    std::uint32_t mountStatus = 0;
    /// The entry could not be examined: the error number, and nothing else but the name is known.
    int error = 0;

    // With `ListingDetail::facts` and `everything` only.
    std::int32_t device = 0;
    Date modified;
    Date changed;
    Date accessed;
    std::optional<Date> added;
    /// The content is only in the cloud.
    bool isDataless = false;

    // With `ListingDetail::everything` only.
    std::int64_t length = 0;
    /// Equal for files that began as clones of one another, where the file system tells.
    std::optional<std::uint64_t> cloneID;
    std::optional<std::uint32_t> cloneRefCount;
    /// Bytes shared with no clone.
    std::optional<std::int64_t> privateBytes;
};

/// Takes the entries of a listing, one after the other.
class EntrySink {
public:
    virtual ~EntrySink() = default;
    virtual void entry(const FolderEntry& entry) = 0;
};

}  // namespace vostrel
