#pragma once

#include <compare>
#include <cstdint>

namespace vostrel {

/// What a file is, whatever it is called: the device it lies on and its number there (the inode).
///
/// Stored as {"device", "inode"}. A device number holds until the next restart only; `RootIdentity` recognises a folder
/// across restarts.
struct FileIdentity {
    std::int32_t device = 0;
    std::uint64_t inode = 0;

    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

}  // namespace vostrel
