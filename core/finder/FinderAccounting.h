#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "filesystem/LinkSet.h"
#include "filesystem/WalkAccounting.h"
#include "finder/FinderCandidates.h"
#include "finder/FinderNotes.h"
#include "finder/FinderProgress.h"
#include "finder/FinderWalker.h"
#include "finder/LargestKept.h"

namespace vostrel {

/// Gathers the candidates of a search from what walks meet, one after the other, within the limits of its memory.
class FinderAccounting final : public WalkAccounting {
public:
    /// What it is given outlives the object. `allRoots` are the paths of the folders that get walks of their own.
    /// `progress` may be none.
    FinderAccounting(const FinderWalker& forWalker, const FinderThresholds& chosen,
                     const std::unordered_set<std::string>& allRoots, FinderProgressBox* progress, LinkSet& links);

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

    /// Why the walk that just ended could not begin, if so.
    [[nodiscard]] std::optional<UnreadableReason> takeRootFailure() { return std::exchange(rootFailure, {}); }
    /// Everything gathered, once the walks are over.
    [[nodiscard]] FinderCandidates take();

private:
    static std::int64_t allocatedOf(const WalkedFile& file) { return file.stamp.allocated; }
    static std::int64_t sizeOf(const DuplicatePoolEntry& file) { return file.stamp.size; }

    [[nodiscard]] bool isNew(const FinderStamp& stamp);
    void take(WalkedFile file);
    void leave(const FinderBlockedPlace& place);
    void report(std::string_view folder);

    const FinderWalker& walker;
    const FinderThresholds& thresholds;
    const std::unordered_set<std::string>& roots;
    FinderProgressBox* progress;
    LinkSet& links;
    std::unordered_set<std::string> volumes;
    FinderCandidates out;
    std::optional<UnreadableReason> rootFailure;
    LargestKept<WalkedFile, &allocatedOf> large;
    LargestKept<WalkedFile, &allocatedOf> old;
    LargestKept<DuplicatePoolEntry, &sizeOf> pool;
    std::size_t foldersSinceReport = 0;
};

}  // namespace vostrel
