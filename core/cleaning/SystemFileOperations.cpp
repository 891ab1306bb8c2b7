#include "cleaning/SystemFileOperations.h"

#include <cerrno>

#include "base/SystemError.h"
#include "cleaning/ItemSentences.h"
#include "cleaning/RemovalTally.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/Trash.h"
#include "platform/TrashInfo.h"
#include "platform/TreeRemoval.h"

namespace vostrel {

namespace {

/// The folder that holds an item, open; or the error number, `ENOENT` when it is not that folder any more.
std::expected<OwnedDescriptor, int> openedHolder(const std::filesystem::path& item, FileIdentity expected) {
    OwnedDescriptor folder(openFolder(item.parent_path()));
    const auto status = folder.isOpen() ? statusOfOpen(folder.get()) : std::unexpected(errno);
    if (!status) return std::unexpected(status.error());
    if (FileIdentity{status->device, status->inode} != expected) return std::unexpected(ENOENT);
    return folder;
}

}  // namespace

std::expected<std::optional<std::filesystem::path>, std::string> SystemFileOperations::trash(
    const std::filesystem::path& item, FileIdentity identity, FileIdentity parent) {
    const auto folder = openedHolder(item, parent);
    if (!folder) {
        const bool isReplaced = isAnotherPath(folder.error());
        return std::unexpected(
            std::string(isReplaced ? sentences::item::folderReplaced : sentences::item::couldNotCheck));
    }
    return moveToTrash({folder->get(), item, identity.device, identity.inode}, home, clock());
}

Removal SystemFileOperations::remove(const std::filesystem::path& item, const RemovalLimits& limits) {
    const std::string name = item.filename();
    const auto folder = openedHolder(item, limits.parent);
    Removal done;
    if (!folder) {
        if (isAnotherPath(folder.error())) {
            done.replaced = Removal::Replaced::parent;
        } else {
            done.firstError = Removal::Failure{item, folder.error()};
        }
        return done;
    }
    RemovalTally tally(limits, item.parent_path());
    removeTree(folder->get(), name, tally);
    done = tally.removal();
    const auto isMissingNow = [&] {
        const auto left = statusOfEntry(folder->get(), name.c_str());
        return !left && isMissing(left.error());
    };
    done.isComplete = (tally.isItemGone() || isMissingNow()) && done.skippedChanged == 0 &&
                      done.skippedUnchecked == 0 && !done.stopped && !done.replaced;
    return done;
}

void SystemFileOperations::forgetTrashed(const std::filesystem::path& item) {
    removeTrashInfo(item);
}

}  // namespace vostrel
