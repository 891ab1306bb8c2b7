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

/// The folder that holds an item, open; nothing when it is not that folder any more.
OwnedDescriptor openedHolder(const std::filesystem::path& item, FileIdentity expected) {
    OwnedDescriptor folder(openFolder(item.parent_path()));
    const auto status = folder.isOpen() ? statusOfOpen(folder.get()) : std::unexpected(errno);
    const bool isTheSame = status && FileIdentity{status->device, status->inode} == expected;
    return isTheSame ? std::move(folder) : OwnedDescriptor();
}

}  // namespace

std::expected<std::optional<std::filesystem::path>, std::string> SystemFileOperations::trash(
    const std::filesystem::path& item, FileIdentity identity, FileIdentity parent) {
    const OwnedDescriptor folder = openedHolder(item, parent);
    if (!folder.isOpen()) return std::unexpected(std::string(sentences::item::folderReplaced));
    return moveToTrash({folder.get(), item, identity.device, identity.inode}, home, Date::now());
}

Removal SystemFileOperations::remove(const std::filesystem::path& item, const RemovalLimits& limits) {
    const std::string name = item.filename();
    const OwnedDescriptor folder = openedHolder(item, limits.parent);
    Removal done;
    if (!folder.isOpen()) {
        done.replaced = Removal::Replaced::parent;
        return done;
    }
    RemovalTally tally(limits, item.parent_path());
    removeTree(folder.get(), name, tally);
    done = tally.removal();
    const auto left = statusOfEntry(folder.get(), name.c_str());
    done.isComplete = !left && isMissing(left.error()) && done.skippedChanged == 0 && done.skippedUnchecked == 0 &&
                      !done.stopped && !done.replaced;
    return done;
}

void SystemFileOperations::forgetTrashed(const std::filesystem::path& item) {
    removeTrashInfo(item);
}

}  // namespace vostrel
