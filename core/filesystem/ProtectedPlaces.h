#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vostrel {

/// How a place is protected.
enum class PlaceKind : std::uint8_t {
    /// Not as a whole; what is inside is open.
    exact,
    /// With everything inside.
    tree,
    /// The desktop tree and the documents tree: a rule may name a folder inside one (`GuardException`).
    desktop,
    documents,
    /// Not as a whole, and neither is any of its direct children; what is inside a child is open.
    container,
    /// A container of home folders: all but this user's own are closed.
    homes,
    /// One home folder that lies in no container of homes.
    homeFolder,
    /// A container of mounted disks.
    disks,
    /// A store of Apple's media apps, with everything inside.
    mediaStore,
    /// Not protected: what tools download into it may be a disk image.
    caches,
};

/// Where a place's path begins, and on which system it counts: the first two count everywhere.
enum class PlaceBase : std::uint8_t { system, home, linuxSystem, linuxHome };

/// One row of the table. In a place, "*" stands for any one component. Home places begin below the home folder.
struct ProtectedPlace {
    std::string_view place;
    PlaceKind kind;
    PlaceBase base;
};

[[nodiscard]] std::span<const ProtectedPlace> protectedPlaces();

/// Where the system makes each user's temporary folder inside a protected tree. One that really is the user's own
/// is open there.
[[nodiscard]] std::span<const std::string_view> temporaryFolderPlaces();

/// Where applications are given a home of their own, below the user's: it holds the same places.
[[nodiscard]] std::span<const std::string_view> applicationHomes();

}  // namespace vostrel
