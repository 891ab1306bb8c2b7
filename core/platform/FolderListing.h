#pragma once

#include <cstddef>
#include <expected>
#include <vector>

#include "platform/FolderEntry.h"

namespace vostrel {

/// Reads open folders, many entries a system call, through one buffer of 128 KiB that serves folder after folder.
///
/// An object belongs to one thread. "." and ".." are never reported; an entry that vanishes between being listed and
/// being looked at is left out, as though the listing had come a moment later. Nothing is opened and no link followed.
class FolderListing {
public:
    explicit FolderListing(ListingDetail detail);

    enum class Step { more, end };
    /// Reports the next few entries to `sink`; `end` once there are no more. Fails with an error number.
    [[nodiscard]] std::expected<Step, int> readSome(int openFolder, EntrySink& sink);

    static constexpr std::size_t bufferSize = 131'072;

private:
    ListingDetail detail;
    std::vector<std::byte> buffer;
};

}  // namespace vostrel
