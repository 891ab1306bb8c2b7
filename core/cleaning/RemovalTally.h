#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cleaning/Removal.h"
#include "platform/TreeRemoval.h"

namespace vostrel {

/// Holds the deletion of one item to its limits, entry by entry, and counts what went.
///
/// The system that removes calls it; it looks at nothing itself. What changed after the preview stays, and so do the
/// folders around it. The removal itself changes times too, and those changes do not count: a folder's when something
/// is removed from it, and those of a file's further names when one of them goes.
class RemovalTally final : public TreeRemovalObserver {
public:
    /// `folder` is the path of the folder that holds the item, for messages. The limits outlive the object.
    RemovalTally(const RemovalLimits& heldTo, std::string folder) : limits(heldTo), folderPath(std::move(folder)) {}

    Answer confirm(const RemovalEntry& entry) override;
    Answer confirmEmptied(const RemovalEntry& entry, const FileStatus& entered) override;
    void removed(const RemovalEntry& entry, std::optional<Date> changedByIt) override;
    Answer failed(std::string_view path, int error) override;

    [[nodiscard]] const Removal& removal() const { return done; }
    /// The item itself was removed, which is surer than another look at its place.
    [[nodiscard]] bool isItemGone() const { return itemIsGone; }

private:
    [[nodiscard]] Answer stopFor(Removal::Replaced replaced);
    [[nodiscard]] bool changedAfterPreview(const FileStatus& status) const;

    const RemovalLimits& limits;
    std::string folderPath;
    Removal done;
    bool itemIsGone = false;
    /// What the entry confirmed last gives back.
    std::int64_t pendingBytes = 0;
    /// Files that lost a name to this removal, and the status-change time that gave them.
    std::map<FileIdentity, Date> changedByRemoval;
};

}  // namespace vostrel
