#include "filesystem/TreeFacts.h"

#include <algorithm>

#include "base/Checked.h"

namespace vostrel {

void TreeFacts::addFile(std::int64_t allocated) {
    fileCount = checkedAdd<std::int64_t>(fileCount, 1, "the number of files");
    bytes = checkedAdd(bytes, allocated, "the size of an item");
}

void TreeFacts::addShared(std::int64_t allocated) {
    sharedBytes = checkedAdd(sharedBytes, allocated, "the size of an item");
}

std::int64_t TreeFacts::ownBytes() const {
    return checkedAdd(bytes, sharedBytes, "the size of an item");
}

void TreeFacts::addDates(Date modified, Date changed, std::optional<Date> added) {
    newestModified = std::max(newestModified, modified);
    newestUse = std::max({newestUse, modified, changed, added.value_or(changed)});
}

void TreeFacts::addUnreadable() {
    unreadableCount = checkedAdd<std::int64_t>(unreadableCount, 1, "the number of unreadable entries");
}

void TreeFacts::add(const TreeFacts& below) {
    bytes = checkedAdd(bytes, below.bytes, "the size of an item");
    addShared(below.sharedBytes);
    fileCount = checkedAdd(fileCount, below.fileCount, "the number of files");
    unreadableCount = checkedAdd(unreadableCount, below.unreadableCount, "the number of unreadable entries");
    newestModified = std::max(newestModified, below.newestModified);
    newestUse = std::max(newestUse, below.newestUse);
    if (!protectedRefusal) protectedRefusal = below.protectedRefusal;
    containsExcluded = containsExcluded || below.containsExcluded;
    crossesVolume = crossesVolume || below.crossesVolume;
    containsDataless = containsDataless || below.containsDataless;
}

}  // namespace vostrel
