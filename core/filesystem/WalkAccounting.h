#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/FileStatus.h"
#include "platform/FolderEntry.h"

namespace vostrel {

/// A folder that a walk has come to. The texts live as long as the call that hands it over.
struct WalkedFolder {
    std::string_view path;
    std::string_view name;
    /// The root is at depth 0.
    std::size_t depth = 0;
};

/// What an accounting says of a subfolder before anything opens it: enter it, or leave it out for a reason whose
/// number means something to that accounting only.
struct WalkDecision {
    std::uint8_t leftOutFor = 0;

    [[nodiscard]] bool enters() const { return leftOutFor == 0; }
};

enum class ListingEnd { whole, failed, stopped };

/// What the listing of one folder leaves behind for the accounting: sums and the few entries that matter one by one.
///
/// It is filled on whichever thread lists the folder and read on the walking thread afterwards. It gets every entry
/// but the subfolders that can be entered; what it keeps of each file must not grow with the number of files.
class FolderNotes : public EntrySink {
public:
    /// The name of a subfolder that can be entered; its own listing comes later.
    virtual void subfolder(std::string_view /*name*/) {}
    /// Forgets everything and keeps its memory, to serve the next folder.
    virtual void clear() = 0;
    /// Bytes held beyond its own size.
    [[nodiscard]] virtual std::size_t footprint() const { return 0; }
};

/// What a walk is for: it decides which folders are entered and adds up what was met.
///
/// All calls but the notes' come on the walking thread and in the walk's order, folder before its subfolders,
/// subfolders as listed, whatever the number of helpers. `decide` and `prepare` alone may come some folders ahead of
/// that order: they must go by the folder only and count nothing.
class WalkAccounting {
public:
    virtual ~WalkAccounting() = default;

    [[nodiscard]] virtual std::unique_ptr<FolderNotes> makeNotes() const = 0;
    /// May ready the notes for the folder that they will serve, from those of the folder around it (none at the root).
    /// Comes ahead of the walk's order, as `decide` does.
    virtual void prepare(const WalkedFolder& /*folder*/, const FolderNotes* /*parent*/, FolderNotes& /*notes*/) {}
    /// `around` are the notes of the folder that holds it, which is listed.
    virtual WalkDecision decide(const WalkedFolder& folder, const FolderNotes& around) = 0;

    virtual void leftOut(const WalkedFolder& folder, WalkDecision decision) = 0;
    virtual void tooDeep(const WalkedFolder& folder) = 0;
    /// It could not be opened or looked at. Below the root a folder that has vanished is not reported.
    virtual void couldNotOpen(const WalkedFolder& folder, int error) = 0;
    virtual void onOtherVolume(const WalkedFolder& folder) = 0;
    /// Its entries are known: all of them, or those met before `end` came about; `error` belongs to a failed end.
    virtual void listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                        int error) = 0;
    /// The walk was stopped before it came to this subfolder.
    virtual void notReached(const WalkedFolder& /*folder*/) {}
    /// Everything below it is done, or the walk was stopped.
    virtual void finished(const WalkedFolder& folder, bool stopped) = 0;
};

}  // namespace vostrel
