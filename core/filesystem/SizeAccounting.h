#pragma once

#include <string>
#include <vector>

#include "filesystem/LinkSet.h"
#include "filesystem/MarkIndex.h"
#include "filesystem/SizeWalker.h"
#include "filesystem/WalkAccounting.h"

namespace vostrel {

/// What one folder's listing leaves for the sizes: sums, and the names of hard-linked files one by one.
class SizeNotes final : public FolderNotes {
public:
    struct LinkedFile {
        std::uint64_t fileID = 0;
        std::int64_t allocated = 0;
    };
    /// An entry at or below which marks may lie.
    struct NamedEntry {
        std::string name;
        FolderEntry entry;
    };

    explicit SizeNotes(bool hasFullDiskAccess) : fullDiskAccess(hasFullDiskAccess) {}

    void entry(const FolderEntry& entry) override;
    void clear() override;
    [[nodiscard]] std::size_t footprint() const override;

    WalkTotals totals;
    std::vector<LinkedFile> linkedFiles;
    /// The folder's own mark key; empty while there are no marks.
    std::string key;
    /// The entries that are not measured here, kept only while `keepsNames`.
    std::vector<NamedEntry> notMeasured;
    bool keepsNames = false;

private:
    bool fullDiskAccess;
};

/// Adds up sizes for the folder tree and for its marks.
class SizeAccounting final : public WalkAccounting {
public:
    /// `rootKey` is the mark key of the root as the caller named it. All references outlive the walk.
    SizeAccounting(const SizeWalker& walker, const MarkIndex& marks, std::string rootKey, LinkSet& links);

    [[nodiscard]] std::unique_ptr<FolderNotes> makeNotes() const override;
    void prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) override;
    WalkDecision decide(const WalkedFolder& folder, const FolderNotes& around) override;
    void leftOut(const WalkedFolder& folder, WalkDecision decision) override;
    void tooDeep(const WalkedFolder& folder) override;
    void couldNotOpen(const WalkedFolder& folder, int error) override;
    void onOtherVolume(const WalkedFolder& folder) override;
    void listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                int error) override;
    void finished(const WalkedFolder& folder, bool stopped) override;

    [[nodiscard]] WalkResult result() &&;

private:
    struct Level {
        WalkTotals totals;
        std::string key;  // empty while there are no marks
        std::optional<UnreadableReason> listingFailure;
    };

    /// Of a folder met in the one that the walk is in.
    [[nodiscard]] std::string keyOf(const WalkedFolder& folder) const;
    void countUnreadable(const WalkedFolder& folder, UnreadableReason reason);
    void skipMarks(const std::string& key, UnreadableReason reason);
    void skipMarksOfEntries(const SizeNotes& notes);
    void countLinkedFiles(const SizeNotes& notes, std::int32_t device);

    const SizeWalker& walker;
    const MarkIndex& marks;
    LinkSet& links;
    std::string rootKey;
    std::vector<Level> levels;
    std::optional<UnreadableReason> rootFailure;
    Measured measured;
};

}  // namespace vostrel
