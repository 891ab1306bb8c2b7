#pragma once

#include <array>

#include "filesystem/FileIdentity.h"
#include "filesystem/RootIdentity.h"
#include "filesystem/UnreadableReason.h"
#include "filesystem/WalkTotals.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How identities and measurements are stored.

template <>
struct JSONNames<UnreadableReason> {
    static constexpr std::array list{
        JSONName{UnreadableReason::needsFullDiskAccess, "needsFullDiskAccess"},
        JSONName{UnreadableReason::noPermission, "noPermission"},
        JSONName{UnreadableReason::couldNotRead, "couldNotRead"},
        JSONName{UnreadableReason::tooDeep, "tooDeep"},
        JSONName{UnreadableReason::otherHome, "otherHome"},
        JSONName{UnreadableReason::otherDisk, "otherDisk"},
        JSONName{UnreadableReason::systemPlace, "systemPlace"},
        JSONName{UnreadableReason::mediaLibrary, "mediaLibrary"},
        JSONName{UnreadableReason::unknown, "unknown"},
    };
    static constexpr UnreadableReason unknown = UnreadableReason::unknown;
};

/// The reason of that very name; reading a stored one takes any other word as `unknown`.
[[nodiscard]] inline std::optional<UnreadableReason> unreadableReasonNamed(std::string_view name) {
    for (const auto& entry : JSONNames<UnreadableReason>::list) {
        if (entry.name == name) return entry.value;
    }
    return std::nullopt;
}

template <>
struct JSONFields<FileIdentity> {
    static constexpr std::array list{
        jsonField<&FileIdentity::device>("device"),
        jsonField<&FileIdentity::inode>("inode"),
    };
};

template <>
struct JSONFields<RootIdentity> {
    static constexpr std::array list{
        jsonField<&RootIdentity::volumeUUID>("volumeUUID"),
        jsonField<&RootIdentity::inode>("inode"),
    };
};

template <>
struct JSONFields<WalkTotals> {
    static constexpr std::array list{
        jsonField<&WalkTotals::allocatedBytes>("allocatedBytes"),
        jsonField<&WalkTotals::files>("files"),
        jsonField<&WalkTotals::unreadableFolders>("unreadableFolders"),
        jsonField<&WalkTotals::unreadableReason>("unreadableReason"),
        jsonField<&WalkTotals::leftOutLibraries>("leftOutLibraries"),
        jsonField<&WalkTotals::linksSkipped>("linksSkipped"),
        jsonField<&WalkTotals::otherVolumes>("otherVolumes"),
        jsonField<&WalkTotals::stopped>("stopped"),
    };
};

template <>
struct JSONFields<MeasuredSize> {
    static constexpr std::array list{
        jsonField<&MeasuredSize::bytes>("bytes"),
        jsonField<&MeasuredSize::files>("files"),
        jsonField<&MeasuredSize::unreadableFolders>("unreadableFolders"),
        jsonField<&MeasuredSize::unreadableReason>("unreadableReason"),
        jsonField<&MeasuredSize::stopped>("stopped"),
        jsonField<&MeasuredSize::leftOutLibraries>("leftOutLibraries"),
    };
    static std::optional<std::string> settle(const MeasuredSize& size) {
        const bool isSound =
            size.bytes >= 0 && size.files >= 0 && size.unreadableFolders >= 0 && size.leftOutLibraries >= 0;
        if (isSound) return std::nullopt;
        return std::string(MeasuredSize::DecodeError::negative);
    }
};

}  // namespace vostrel
