#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "platform/FileStatus.h"

namespace vostrel {

/// An entry that a removal has come to, as it is found right before the question about it.
struct RemovalEntry {
    /// Below the folder in which the removal began: "item", "item/folder/file".
    std::string_view path;
    bool isTop = false;
    /// The entry itself, no link followed; a folder is looked at after it was opened, so that what was looked at is
    /// what will be entered. An error number when it could not be looked at.
    std::expected<FileStatus, int> status;
    /// Whether the folder through which the removal came here is still found at its path, which may go through no link.
    bool isFolderInPlace = true;
};

/// Decides about every entry of a tree that is being removed, and hears what became of it. Called on the thread that
/// removes.
class TreeRemovalObserver {
public:
    enum class Answer { proceed, skip, stop };

    virtual ~TreeRemovalObserver() = default;

    /// Asked right before an entry is removed, of a folder before anything in it is looked at.
    [[nodiscard]] virtual Answer confirm(const RemovalEntry& entry) = 0;

    /// Asked where the system allows it right before an emptied folder is removed. `entry` is what has its name now,
    /// `entered` the folder that was emptied.
    [[nodiscard]] virtual Answer confirmEmptied(const RemovalEntry& entry, const FileStatus& entered) = 0;

    /// The entry that was confirmed last, or the emptied folder, is gone. For a file that had further names,
    /// `changedByIt` is the status-change time that losing this one gave it, where the system tells.
    virtual void removed(const RemovalEntry& entry, std::optional<Date> changedByIt) = 0;

    /// Something confirmed could not be opened, listed or removed; it stays, and so do the folders around it. Anything
    /// but `stop` goes on with the rest.
    [[nodiscard]] virtual Answer failed(std::string_view path, int error) = 0;
};

/// Removes an entry of an open folder, a folder with everything inside it, entry by entry as the observer decides.
///
/// It follows no link, enters no other mount and goes by open folders: what is removed from a folder was looked up in
/// that very folder, whatever happens to paths meanwhile. An entry that stays keeps the folders around it. Depth is
/// limited by memory alone; few folders are open at once.
void removeTree(int openFolder, const std::string& name, TreeRemovalObserver& observer);

}  // namespace vostrel
