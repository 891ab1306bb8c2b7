#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/OwnedDescriptor.h"
#include "platform/Trash.h"

namespace vostrel::linux_platform {

/// A Trash in the freedesktop.org layout that may take an item: its folders are the user's alone, no links, and on the
/// item's mount.
struct TrashFolder {
    std::filesystem::path path;
    /// Both only for going below them.
    OwnedDescriptor files;
    OwnedDescriptor info;
    /// The top of the disk whose own Trash it is; empty for the home's.
    std::filesystem::path top;
};

/// Opens the Trash for an item that was found on this mount, and makes it where there is none: the home's on the home's
/// mount, else the one at the top of the item's own. Fails with the sentence for the user.
[[nodiscard]] std::expected<TrashFolder, std::string> openTrashFor(const TrashItem& item, std::uint64_t mount,
                                                                   const std::filesystem::path& home);

/// "Vostrel could not move it to the Trash because …, so it left it alone.", and what to do about it.
[[nodiscard]] std::unexpected<std::string> refusal(std::string_view because, std::string_view advice = {});

}  // namespace vostrel::linux_platform
