#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace vostrel {

/// Recognises a root folder across restarts and renames: the UUID of its volume and its inode there.
///
/// An approval pins the roots of the approved preview by it. Stored as {"volumeUUID", "inode"}.
struct RootIdentity {
    std::string volumeUUID;
    std::uint64_t inode = 0;

    friend auto operator<=>(const RootIdentity&, const RootIdentity&) = default;
};

}  // namespace vostrel
