#include "filesystem/WalkTotals.h"

#include "base/Checked.h"

namespace vostrel {

void WalkTotals::addFile(std::int64_t bytes) {
    files = checkedAdd<std::int64_t>(files, 1, "the number of files");
    allocatedBytes = checkedAdd(allocatedBytes, bytes, "the size of a folder");
}

void WalkTotals::addUnreadable(UnreadableReason reason) {
    unreadableFolders = checkedAdd<std::int64_t>(unreadableFolders, 1, "the number of unreadable folders");
    if (!unreadableReason) unreadableReason = reason;
}

void WalkTotals::add(const WalkTotals& below) {
    files = checkedAdd(files, below.files, "the number of files");
    allocatedBytes = checkedAdd(allocatedBytes, below.allocatedBytes, "the size of a folder");
    unreadableFolders = checkedAdd(unreadableFolders, below.unreadableFolders, "the number of unreadable folders");
    if (!unreadableReason) unreadableReason = below.unreadableReason;
    leftOutLibraries = checkedAdd(leftOutLibraries, below.leftOutLibraries, "the number of libraries");
    linksSkipped = checkedAdd(linksSkipped, below.linksSkipped, "the number of links");
    otherVolumes = checkedAdd(otherVolumes, below.otherVolumes, "the number of other volumes");
    stopped = stopped || below.stopped;
}

MeasuredSize::MeasuredSize(const WalkTotals& totals)
    : bytes(totals.allocatedBytes),
      files(totals.files),
      unreadableFolders(totals.unreadableFolders),
      unreadableReason(totals.unreadableReason),
      stopped(totals.stopped),
      leftOutLibraries(totals.leftOutLibraries) {}

}  // namespace vostrel
