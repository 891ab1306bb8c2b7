#include "spacemap/SpaceAccounting.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Checked.h"
#include "spacemap/SpaceTreeBuilder.h"

namespace vostrel {

namespace {

// Beyond every number that a reason has.
constexpr WalkDecision otherVolumeDecision{std::numeric_limits<std::uint8_t>::max()};

constexpr std::size_t foldersBetweenLooksAtTheClock = 16;
constexpr std::uint64_t nanosecondsBetweenReports = 50'000'000;

void add(std::int64_t& sum, std::int64_t more) {
    sum = checkedAdd(sum, more, "the number of entries");
}

/// What stands for so many files together.
SpaceDraft aggregateOf(std::int64_t bytes, std::int64_t files) {
    SpaceDraft rest = SpaceDraft::aggregate();
    rest.bytes = bytes;
    rest.files = files;
    rest.entries = files;
    return rest;
}

}  // namespace

SpaceAccounting::SpaceAccounting(const Setting& chosen, std::string rootName)
    : setting(chosen),
      title(std::move(rootName)),
      root(title, SpaceDraft::Kind::folder),
      floor(chosen.limits.initialFloor) {}

std::unique_ptr<FolderNotes> SpaceAccounting::makeNotes() const {
    return std::make_unique<SpaceNotes>(floor);
}

void SpaceAccounting::prepare(const WalkedFolder& folder, const FolderNotes* /*parent*/, FolderNotes& notes) {
    if (listsChildren(folder.depth))
        dynamic_cast<SpaceNotes&>(notes).wants(setting.limits.maxChildren, setting.limits.maxMarkers);
}

WalkDecision SpaceAccounting::decide(const WalkedFolder& folder, const FolderNotes& /*around*/) {
    if (failure) return walkDecisionOf(AccessDecision{failure});  // there will be no sum to add to
    asked = folder.path;
    if (setting.volumeRoots.contains(asked)) return otherVolumeDecision;
    setting.walker.lookedUp(asked);
    return walkDecisionOf(setting.walker.access(asked));
}

void SpaceAccounting::leftOut(const WalkedFolder& folder, WalkDecision decision) {
    if (decision.leftOutFor == otherVolumeDecision.leftOutFor) return onOtherVolume(folder);
    addMarker(levels.back(),
              SpaceDraft::marker(std::string(folder.name), SpaceDraft::Kind::folder, reasonOf(decision)));
}

void SpaceAccounting::tooDeep(const WalkedFolder& folder) {
    addMarker(levels.back(),
              SpaceDraft::marker(std::string(folder.name), SpaceDraft::Kind::folder, UnreadableReason::tooDeep));
}

void SpaceAccounting::couldNotOpen(const WalkedFolder& folder, int error) {
    const UnreadableReason reason = unreadableReasonOf(error, setting.walker.fullDiskAccess);
    if (folder.depth == 0) {
        failure = reason;
    } else {
        addMarker(levels.back(), SpaceDraft::marker(std::string(folder.name), SpaceDraft::Kind::folder, reason));
    }
}

void SpaceAccounting::onOtherVolume(const WalkedFolder& folder) {
    if (levels.empty()) return;
    addMarker(levels.back(), SpaceDraft::otherVolume(std::string(folder.name)));
}

void SpaceAccounting::listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                             int error) {
    auto& found = dynamic_cast<SpaceNotes&>(notes);
    Level& level =
        levels.emplace_back(SpaceDraft(folder.depth == 0 ? title : std::string(folder.name), SpaceDraft::Kind::folder));
    level.draft.device = status.device;
    level.draft.inode = status.inode;
    if (listsChildren(folder.depth)) {
        level.draft.children.reserve(1 + std::min(found.largest.count(), setting.limits.maxChildren));
        level.draft.children.push_back(SpaceDraft::aggregate());
    } else {
        level.draft.detail = SpaceDetail::summarized;
    }
    keep(level.draft.nodeCount());
    add(counted.foldersRead, 1);
    add(counted.filesSeen, found.sums.names);
    add(counted.linksNotFollowed, found.sums.links);

    if (end == ListingEnd::failed) {
        level.listingFailure = unreadableReasonOf(error, setting.walker.fullDiskAccess);
        if (folder.depth == 0) failure = level.listingFailure;
        add(level.draft.unreadableCount, 1);
        add(running.unreadable, 1);
    }
    // The links of a root without a sum stay for the walks that share the set.
    if (!failure) takeFiles(level, status.device, found);
    takeUnmeasured(level, found);
    report(folder);
}

void SpaceAccounting::takeFiles(Level& level, std::int32_t device, SpaceNotes& notes) {
    for (std::size_t index = 0; index < notes.linkedCount(); ++index) {
        const auto file = notes.linkedFile(index);
        if (setting.links.insert({device, file.fileID})) notes.count(file);
    }
    add(running.files, notes.sums.files);
    add(running.bytes, notes.sums.bytes);

    std::int64_t bytesLeft = notes.sums.bytes;
    std::int64_t filesLeft = notes.sums.files;
    for (const auto& file : notes.largest.settle(floor)) {
        if (file.bytes <= floor) continue;  // a compaction has raised it meanwhile
        level.draft.adopt(SpaceDraft::file(std::string(notes.largest.nameOf(file)), file.bytes, device, file.number));
        bytesLeft -= file.bytes;
        --filesLeft;
        keep(1);
    }
    level.largestFolded = std::max(level.largestFolded, notes.largest.largestLeftOut());
    fold(level.draft, aggregateOf(bytesLeft, filesLeft));
}

void SpaceAccounting::takeUnmeasured(Level& level, SpaceNotes& notes) {
    std::int64_t unreadableLeft = notes.sums.unreadable;
    for (const auto& entry : notes.unmeasured.settle(-1)) {
        std::string name(notes.unmeasured.nameOf(entry));
        if (entry.number == 0) {
            addMarker(level, SpaceDraft::otherVolume(std::move(name)));
        } else {
            const auto reason = unreadableReasonOf(static_cast<int>(entry.number), setting.walker.fullDiskAccess);
            addMarker(level, SpaceDraft::marker(std::move(name), SpaceDraft::Kind::file, reason));
            --unreadableLeft;
        }
    }
    if (unreadableLeft == 0) return;
    SpaceDraft rest = aggregateOf(0, 0);
    rest.unreadableCount = unreadableLeft;
    rest.entries = unreadableLeft;
    add(running.unreadable, unreadableLeft);
    fold(level.draft, rest);
}

void SpaceAccounting::addMarker(Level& level, SpaceDraft marker) {
    add(running.unreadable, marker.unreadableCount);
    add(running.notMeasured, marker.notMeasuredCount);
    if (!level.draft.hasAggregate()) return level.draft.absorb(marker);
    level.draft.adopt(std::move(marker));
    keep(1);
    limitChildren(level);
}

void SpaceAccounting::finished(const WalkedFolder& folder, bool stopped) {
    Level level = std::move(levels.back());
    levels.pop_back();
    SpaceDraft& draft = level.draft;
    draft.stopped = draft.stopped || stopped;
    const auto& limits = setting.limits;
    kept -= SpaceTreeBuilder::settleChildren(draft, limits.maxChildren, limits.maxMarkers, level.largestFolded).nodes;
    draft.children.shrink_to_fit();
    if (level.listingFailure && draft.files == 0) {
        kept -= draft.nodeCount() - 1;
        draft.unreadable = level.listingFailure;
        draft.children.clear();
    }
    if (!levels.empty()) return addFolder(levels.back(), std::move(draft));
    root = std::move(draft);
    running.current = folder.path;
    if (setting.progress != nullptr) setting.progress->set(running);
}

void SpaceAccounting::addFolder(Level& parent, SpaceDraft folder) {
    const bool isKept = parent.draft.hasAggregate() && (folder.isMarker() || folder.bytes > floor);
    if (isKept) {
        parent.draft.adopt(std::move(folder));
        limitChildren(parent);
        compactIfNeeded();
    } else {
        kept -= folder.nodeCount();
        fold(parent.draft, folder);
    }
}

void SpaceAccounting::fold(SpaceDraft& folder, const SpaceDraft& child) {
    folder.absorb(child);
    if (!folder.hasAggregate()) return;
    folder.children.front().fold(child);
    add(counted.entriesFolded, child.isAggregate() ? child.entries : 1);
}

void SpaceAccounting::limitChildren(Level& level) {
    const auto& [most, mostMarkers] = std::pair(setting.limits.maxChildren, setting.limits.maxMarkers);
    const std::size_t enoughToBother = 2 * (most + mostMarkers + 1);
    if (level.draft.children.size() <= enoughToBother) return;
    const auto gone = SpaceTreeBuilder::limitChildren(level.draft, most, mostMarkers);
    kept -= gone.nodes;
    level.largestFolded = std::max(level.largestFolded, gone.largest);
}

void SpaceAccounting::keep(std::size_t nodes) {
    kept += nodes;
    compactIfNeeded();
}

void SpaceAccounting::compactIfNeeded() {
    counted.peakKeptNodes = std::max(counted.peakKeptNodes, static_cast<std::int64_t>(kept));
    const auto& limits = setting.limits;
    if (kept <= std::max(limits.transientNodes, compactAbove)) return;
    add(counted.compactionPasses, 1);
    constexpr std::size_t leastTarget = 4;
    const std::size_t target = std::max(limits.transientNodes / 2, leastTarget);
    const auto inProgress = draftsInProgress();
    SpaceCut cut = SpaceTreeBuilder::floorToFit(inProgress, target);
    if (cut.bytes < limits.initialFloor) cut = SpaceCut::atLeast(limits.initialFloor);
    SpaceTreeBuilder::compact(inProgress, cut);
    if (cut != SpaceCut::keepsNone()) floor = std::max(floor.load(), cut.bytes);
    kept = 0;
    for (const SpaceDraft* draft : inProgress)
        kept += draft->nodeCount();
    // What no cut can fold would otherwise bring on a pass for every entry.
    compactAbove = kept > target ? kept + target : 0;
}

std::vector<SpaceDraft*> SpaceAccounting::draftsInProgress() {
    std::vector<SpaceDraft*> drafts;
    drafts.reserve(levels.size());
    for (Level& level : levels)
        drafts.push_back(&level.draft);
    return drafts;
}

void SpaceAccounting::report(const WalkedFolder& folder) {
    add(running.folders, 1);
    if (setting.progress == nullptr || ++sinceReport < foldersBetweenLooksAtTheClock) return;
    sinceReport = 0;
    const std::uint64_t now = setting.clock();
    if (now - lastReport < nanosecondsBetweenReports) return;
    lastReport = now;
    running.current = folder.path;
    setting.progress->set(running);
}

}  // namespace vostrel
