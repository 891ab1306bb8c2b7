#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vostrel {

/// What the name of such a file has beside the name of its item.
inline constexpr std::string_view trashInfoSuffix = ".trashinfo";

/// The file's text for an item that lay at `place`, a path below the top of its disk in a disk's own Trash and an
/// absolute one in the home's. The date is written in local time, to the second.
[[nodiscard]] std::string trashInfoText(const std::filesystem::path& place, Date deleted);

/// When the user threw away an item of a Trash as Linux desktops keep it: its "files" folder holds the items and the
/// "info" folder beside it a ".trashinfo" file for each, with the date in local time. An hour that comes twice is read
/// as the later one.
///
/// Nothing when no such file says so: an item without one did not come through the Trash. Nothing either when others
/// may write to the file or to its folder, for then anybody may have dated the item. A date only says so much: the file
/// may be left over from an earlier item of that name, and who wrote it may have been in another time zone.
[[nodiscard]] std::optional<Date> deletionDate(const std::filesystem::path& item);

/// Removes that file of an item which is gone from the Trash; nothing while something still has the item's name.
void removeTrashInfo(const std::filesystem::path& item);

}  // namespace vostrel
