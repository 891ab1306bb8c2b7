#include "filesystem/UnreadableReason.h"

#include <cerrno>

namespace vostrel {

UnreadableReason unreadableReasonOf(int error, bool fullDiskAccess) {
    if (error == EACCES) return UnreadableReason::noPermission;
    if (error == EPERM && !fullDiskAccess) return UnreadableReason::needsFullDiskAccess;
    return UnreadableReason::couldNotRead;
}

bool isLeftOutOnPurpose(UnreadableReason reason) {
    return reason == UnreadableReason::otherHome || reason == UnreadableReason::otherDisk ||
           reason == UnreadableReason::systemPlace;
}

std::string_view shownText(UnreadableReason reason) {
    switch (reason) {
        case UnreadableReason::needsFullDiskAccess:
            return "Needs Full Disk Access";
        case UnreadableReason::noPermission:
            return "No permission to read it";
        case UnreadableReason::couldNotRead:
            return "Could not be read";
        case UnreadableReason::tooDeep:
            return "Too deep to measure";
        case UnreadableReason::otherHome:
            return "Another account's folder, not measured";
        case UnreadableReason::otherDisk:
            return "On another disk, not measured";
        case UnreadableReason::systemPlace:
            return "A system folder, not measured";
        case UnreadableReason::mediaLibrary:
            return "Not measured: Vostrel does not open the Music and TV libraries";
        case UnreadableReason::unknown:
            return "Could not be read";
    }
    return {};
}

}  // namespace vostrel
