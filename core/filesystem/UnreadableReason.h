#pragma once

#include <string_view>

namespace vostrel {

/// Why something was not measured. Stored by case name; a name of a later version reads as `unknown`.
enum class UnreadableReason {
    needsFullDiskAccess,
    noPermission,
    couldNotRead,
    tooDeep,
    otherHome,
    otherDisk,
    systemPlace,
    mediaLibrary,
    unknown,
};

/// What a failed system call means: a refusal by permission, by macOS's privacy protection, or anything else.
[[nodiscard]] UnreadableReason unreadableReasonOf(int error, bool fullDiskAccess);

/// The places that Vostrel passes over by its own rules. A media library is not one: it has sentences of its own.
[[nodiscard]] bool isLeftOutOnPurpose(UnreadableReason reason);

/// The short text shown for it: "Needs Full Disk Access".
[[nodiscard]] std::string_view shownText(UnreadableReason reason);

}  // namespace vostrel
