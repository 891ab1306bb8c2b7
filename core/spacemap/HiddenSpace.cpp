#include "spacemap/HiddenSpace.h"

#include <algorithm>

namespace vostrel {

HiddenSpace HiddenSpace::of(const SpaceNode& root, const VolumeCapacity& capacity, const SystemSpaceFigures& figures) {
    HiddenSpace space;
    space.used = std::max<std::int64_t>(capacity.total - capacity.availableNow, 0);
    space.measured = root.bytes;
    space.measuredIsComplete = root.isComplete();
    space.measuredMayCountSharedSpace = space.measured > space.used;
    const std::int64_t hidden = std::max<std::int64_t>(space.used - space.measured, 0);
    space.hidden = hidden;
    if (capacity.availableImportant)
        space.purgeable = std::max<std::int64_t>(*capacity.availableImportant - capacity.availableNow, 0);
    space.swapFiles = figures.swapFiles;
    space.localSnapshotCount = figures.localSnapshotCount;
    const std::int64_t purgeable = space.purgeable.value_or(0);
    space.purgeableMayBeInFolders = purgeable > hidden;
    if (!space.measuredMayCountSharedSpace && !space.purgeableMayBeInFolders)
        space.other = std::max<std::int64_t>(hidden - purgeable - figures.swapFiles.value_or(0), 0);
    space.librariesLeftOut = root.leftOutLibraries >= 1;
    return space;
}

std::vector<std::string> HiddenSpace::sentences(SystemKind system) const {
    const bool isMac = system == SystemKind::macOS;
    std::vector<std::string> told;
    if (measuredMayCountSharedSpace) {
        told.emplace_back(
            "Your folders add up to more than the space in use on this disk, so Vostrel cannot work out the hidden "
            "space. A file copied as a clone shares its space on the disk with the original, but it counts in full in "
            "each folder that holds it.");
    } else if (isMac) {
        told.emplace_back(
            "Used space Vostrel did not find in your folders: macOS itself, apps, other accounts on this Mac, swap "
            "files, and purgeable space.");
    } else {
        told.emplace_back(
            "Used space Vostrel did not find in the folders it read: other accounts on this computer, folders it may "
            "not open, space the file system keeps for itself, and deleted files that are still open.");
    }
    if (purgeable.value_or(0) > 0 && isMac) {
        told.emplace_back(
            "Purgeable space is space macOS counts as in use but frees by itself when it needs room. It holds local "
            "Time Machine snapshots, some caches, and iCloud files macOS can download again.");
    }
    if (purgeableMayBeInFolders)
        told.emplace_back("Part of the purgeable space lies in folders that Vostrel measured.");
    if (librariesLeftOut) {
        told.emplace_back(
            "The Music and TV libraries are part of this space: Vostrel does not open them, so no folder it measured "
            "accounts for them.");
    }
    return told;
}

}  // namespace vostrel
