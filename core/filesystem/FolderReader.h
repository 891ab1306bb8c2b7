#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "filesystem/FolderSource.h"
#include "filesystem/WalkAccounting.h"

namespace vostrel {

/// The disk and the mount that a folder lies on.
struct WalkVolume {
    std::int32_t device = 0;
    std::uint64_t mount = 0;

    friend bool operator==(const WalkVolume&, const WalkVolume&) = default;
};

/// One folder of a walk with what listing it brought.
///
/// Objects are used again folder after folder: `names` and `subfolders` keep their memory.
struct ListedFolder {
    struct Subfolder {
        std::size_t nameStart = 0;
        std::size_t nameLength = 0;
        WalkDecision decision;
        /// Its own listing, once it was queued to be listed ahead.
        ListedFolder* ahead = nullptr;
    };
    enum class Result { listed, failed, stopped, couldNotOpen, onOtherVolume };
    enum class State { waiting, beingListed, ready };

    std::string path;
    std::size_t depth = 0;
    std::optional<WalkVolume> parentVolume;
    std::unique_ptr<FolderNotes> notes;

    Result result = Result::listed;
    int error = 0;
    FileStatus status;
    std::string names;
    std::vector<Subfolder> subfolders;
    /// How many of them were asked about and, where they may be entered, queued.
    std::size_t decided = 0;

    /// Guarded by the lock of `ListingAhead` while the folder is queued there.
    State state = State::waiting;

    [[nodiscard]] WalkedFolder asWalked() const;
    [[nodiscard]] std::string_view nameOf(const Subfolder& subfolder) const;
    [[nodiscard]] WalkVolume volume() const { return {status.device, status.mount}; }
    /// The path of a subfolder, put into `out`.
    void pathOf(const Subfolder& subfolder, std::string& out) const;
    [[nodiscard]] std::size_t footprint() const;
    void clear();
};

/// Opens, checks, lists and closes one folder after another; each thread of a walk has its own.
class FolderReader {
public:
    /// `meanwhile` is called every few entries of a long listing; it may be empty.
    FolderReader(FolderSource& source, ListingDetail detail, std::function<void()> meanwhile = {});

    /// Fills `folder`. `mustStop` is asked before each bulk read; nothing may throw.
    void read(ListedFolder& folder, const std::function<bool()>& mustStop);

    /// Folders open at this moment, and the most at once.
    [[nodiscard]] std::size_t openNow() const { return open; }
    [[nodiscard]] std::size_t peakOpen() const { return peak; }

private:
    void list(int descriptor, ListedFolder& folder, const std::function<bool()>& mustStop);

    FolderSource& source;
    FolderListing listing;
    std::function<void()> meanwhile;
    std::size_t open = 0;
    std::size_t peak = 0;
};

}  // namespace vostrel
