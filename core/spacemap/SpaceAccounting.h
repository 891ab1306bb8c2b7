#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "filesystem/LinkSet.h"
#include "filesystem/SizeWalker.h"
#include "filesystem/WalkAccounting.h"
#include "spacemap/ScanProgress.h"
#include "spacemap/SpaceDraft.h"
#include "spacemap/SpaceNotes.h"
#include "spacemap/SpaceScanLimits.h"
#include "spacemap/SpaceTree.h"

namespace vostrel {

/// Builds the drafts of a map from what a walk meets, within the limits of its memory.
///
/// A folder's draft gathers its children while it is walked and goes into its parent's when it is done. What is too
/// small goes into the folder's aggregate at once; whenever more nodes are kept than the limits allow, a compaction
/// folds the smallest of all and raises the floor, below which nothing is kept from then on.
class SpaceAccounting final : public WalkAccounting {
public:
    struct Setting {
        const SizeWalker& walker;
        const SpaceScanLimits& limits;
        /// Paths of other volumes, never entered.
        const std::unordered_set<std::string>& volumeRoots;
        LinkSet& links;
        /// May be none.
        ScanProgressBox* progress = nullptr;
        /// Nanoseconds that only grow.
        const std::function<std::uint64_t()>& clock;
    };

    /// What the setting names outlives the object.
    SpaceAccounting(const Setting& chosen, std::string rootName);

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

    /// Why the root has no sum, if it has none.
    [[nodiscard]] const std::optional<UnreadableReason>& rootFailure() const { return failure; }
    /// The root's draft, once the walk is over.
    [[nodiscard]] SpaceDraft takeRoot() { return std::move(root); }
    [[nodiscard]] const SpaceTree::Stats& stats() const { return counted; }

private:
    /// A folder under way.
    struct Level {
        explicit Level(SpaceDraft itsDraft) : draft(std::move(itsDraft)) {}

        SpaceDraft draft;
        /// The largest size of what was folded because the folder has too many children.
        std::int64_t largestFolded = 0;
        std::optional<UnreadableReason> listingFailure;
    };

    [[nodiscard]] bool listsChildren(std::size_t depth) const { return depth <= setting.limits.maxDetailDepth; }
    void takeFiles(Level& level, std::int32_t device, SpaceNotes& notes);
    void takeUnmeasured(Level& level, SpaceNotes& notes);
    void addMarker(Level& level, SpaceDraft marker);
    void addFolder(Level& parent, SpaceDraft folder);
    void limitChildren(Level& level);
    void fold(SpaceDraft& folder, const SpaceDraft& child);

    void keep(std::size_t nodes);
    void compactIfNeeded();
    [[nodiscard]] std::vector<SpaceDraft*> draftsInProgress();
    void report(const WalkedFolder& folder);

    const Setting setting;
    std::string title;
    std::string asked;          // a path as a string of its own, in memory that serves again
    std::vector<Level> levels;  // the root first
    SpaceDraft root;
    std::optional<UnreadableReason> failure;
    SpaceTree::Stats counted;

    std::atomic<std::int64_t> floor;
    std::size_t kept = 0;
    /// Nodes that the last compaction could not fold; the next one waits until there are so many more.
    std::size_t compactAbove = 0;

    ScanProgress running;
    std::size_t sinceReport = 0;
    std::uint64_t lastReport = 0;
};

}  // namespace vostrel
