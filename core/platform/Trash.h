#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "base/Date.h"

namespace vostrel {

/// An item that shall go to the Trash, as its caller checked it.
struct TrashItem {
    /// The folder that holds it, open for reading. The caller closes it.
    int openParent = -1;
    /// Absolute, in normal form and through no link. Its last component is the item's name in that folder.
    std::filesystem::path path;
    std::int32_t device = 0;
    std::uint64_t inode = 0;
};

/// Moves an item to the user's Trash, where the desktop's own tools list it and put it back. Gives the place where it
/// lies then, nothing when the system did not say; fails with a sentence that tells the user why and what to do about
/// it, and then the item is where it was.
///
/// It never copies, never replaces anything and never leaves the item's disk: a disk that cannot do that keeps its
/// items. Nothing but that very item is moved; where another entry takes its place at the last moment, that one is put
/// back, and when even this fails, the sentence says where it is.
///
/// On Linux `home`, absolute and through no link, is the folder whose Trash takes what lies on its disk, and `now` is
/// written down as the time when the item was thrown away. On macOS the system decides both. Safe on any thread.
[[nodiscard]] std::expected<std::optional<std::filesystem::path>, std::string> moveToTrash(
    const TrashItem& item, const std::filesystem::path& home, Date now);

}  // namespace vostrel
