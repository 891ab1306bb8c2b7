#include "cleaning/RemovalTally.h"

#include "base/Checked.h"

namespace vostrel {

namespace {

FileIdentity identityOf(const FileStatus& status) {
    return {status.device, status.inode};
}

}  // namespace

RemovalTally::Answer RemovalTally::confirm(const RemovalEntry& entry) {
    if (limits.shouldStop()) {
        done.stopped = true;
        return Answer::stop;
    }
    if (entry.isTop && entry.status && identityOf(*entry.status) != limits.item) {
        return stopFor(Removal::Replaced::item);
    }
    if (!entry.status) {
        ++done.skippedUnchecked;
        return Answer::skip;
    }
    if (!entry.isFolderInPlace) return stopFor(Removal::Replaced::parent);
    if (changedAfterPreview(*entry.status)) {
        ++done.skippedChanged;
        return Answer::skip;
    }
    const bool givesBlocksBack = entry.status->type != EntryType::folder && entry.status->linkCount <= 1;
    pendingBytes = givesBlocksBack ? entry.status->allocated : 0;
    return Answer::proceed;
}

RemovalTally::Answer RemovalTally::confirmEmptied(const RemovalEntry& entry, const FileStatus& entered) {
    const bool isInPlace = entry.isFolderInPlace && entry.status && identityOf(*entry.status) == identityOf(entered);
    if (!isInPlace) return stopFor(Removal::Replaced::parent);
    pendingBytes = 0;
    return Answer::proceed;
}

RemovalTally::Answer RemovalTally::stopFor(Removal::Replaced replaced) {
    done.replaced = replaced;
    return Answer::stop;
}

bool RemovalTally::changedAfterPreview(const FileStatus& status) const {
    if (status.changed <= limits.changedAfter + RemovalLimits::tolerance) return false;
    const auto known = changedByRemoval.find(identityOf(status));
    return known == changedByRemoval.end() || status.changed > known->second;
}

void RemovalTally::removed(const RemovalEntry& entry, std::optional<Date> changedByIt) {
    const bool isFolder = entry.status && entry.status->type == EntryType::folder;
    itemIsGone = itemIsGone || entry.isTop;
    ++(isFolder ? done.removedFolders : done.removedFiles);
    done.removedBytes = checkedAdd(done.removedBytes, pendingBytes, "the size of what was deleted");
    if (isFolder || !entry.status) return;
    if (changedByIt && entry.status->linkCount > 1) {
        changedByRemoval[identityOf(*entry.status)] = *changedByIt;
    } else {
        changedByRemoval.erase(identityOf(*entry.status));  // a new file may get its number
    }
}

RemovalTally::Answer RemovalTally::failed(std::string_view path, int error) {
    if (!done.firstError) done.firstError = {folderPath + '/' + std::string(path), error};
    return Answer::proceed;
}

}  // namespace vostrel
