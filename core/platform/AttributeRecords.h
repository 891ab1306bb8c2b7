#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>

#include "platform/FolderEntry.h"

namespace vostrel {

/// Which attributes macOS's bulk listing is asked for, one word of bits a group as `getattrlistbulk` takes them.
struct AttributeRequest {
    std::uint32_t common = 0;
    std::uint32_t folder = 0;
    std::uint32_t file = 0;
    /// Travels in the fork word, and only with the option that says so.
    std::uint32_t extended = 0;

    [[nodiscard]] constexpr AttributeRequest withoutMountStatus() const;

    friend bool operator==(const AttributeRequest&, const AttributeRequest&) = default;
};

/// The attributes' bits, by the group whose word they stand in.
namespace attribute {

inline constexpr std::uint32_t name = 0x1;
inline constexpr std::uint32_t device = 0x2;
inline constexpr std::uint32_t objectType = 0x8;
inline constexpr std::uint32_t modified = 0x400;
inline constexpr std::uint32_t changed = 0x800;
inline constexpr std::uint32_t flags = 0x4'0000;
inline constexpr std::uint32_t fileID = 0x200'0000;
inline constexpr std::uint32_t added = 0x1000'0000;
inline constexpr std::uint32_t error = 0x2000'0000;
inline constexpr std::uint32_t returnedSet = 0x8000'0000;

inline constexpr std::uint32_t folderMountStatus = 0x4;

inline constexpr std::uint32_t fileLinkCount = 0x1;
inline constexpr std::uint32_t fileAllocated = 0x4;
inline constexpr std::uint32_t fileLength = 0x200;

inline constexpr std::uint32_t extendedPrivateSize = 0x8;
inline constexpr std::uint32_t extendedCloneID = 0x100;
inline constexpr std::uint32_t extendedCloneCount = 0x1000;

}  // namespace attribute

constexpr AttributeRequest AttributeRequest::withoutMountStatus() const {
    return {common, folder & ~attribute::folderMountStatus, file, extended};
}

/// What a listing asks for by its detail.
[[nodiscard]] AttributeRequest attributeRequest(ListingDetail detail);

/// The bit of an entry's flags that says that its content is only in the cloud.
inline constexpr std::uint32_t datalessFlag = 0x4000'0000;

/// Hands the records that `getattrlistbulk` packed into `buffer` to `sink`, in their order.
///
/// Each record says which attributes it holds; one that is absent moves the later ones up. Nothing is read beyond a
/// record, nor a record beyond the buffer, which is the whole one that the system was given: whatever would lie outside
/// fails as `EIO`, as does a name that names no entry of the folder ("", "a/b"). Entries before the fault were handed
/// over. A record that neither failed nor says what its entry is gives an entry with `EIO`, since it may be a folder.
[[nodiscard]] std::expected<void, int> readAttributeRecords(std::span<const std::byte> buffer, std::size_t records,
                                                            const AttributeRequest& request, EntrySink& sink);

}  // namespace vostrel
