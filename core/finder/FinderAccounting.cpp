#include "finder/FinderAccounting.h"

#include <limits>
#include <utility>

#include "base/Checked.h"
#include "filesystem/PackageNames.h"
#include "finder/FinderPlaces.h"

namespace vostrel {

namespace {

// Decisions of the search's own, beyond every number that a reason has.
constexpr WalkDecision otherVolumeDecision{std::numeric_limits<std::uint8_t>::max()};
constexpr WalkDecision packageDecision{std::numeric_limits<std::uint8_t>::max() - 1};
constexpr WalkDecision repositoryDecision{std::numeric_limits<std::uint8_t>::max() - 2};
constexpr WalkDecision rootDecision{std::numeric_limits<std::uint8_t>::max() - 3};

// Places named; the others are counted.
constexpr std::size_t mostPlacesNamed = 100;

constexpr std::size_t foldersBetweenReports = 64;

void add(std::int64_t& sum, std::int64_t more) {
    sum = checkedAdd(sum, more, "the number of entries");
}

FinderNotes& of(FolderNotes& notes) {
    return dynamic_cast<FinderNotes&>(notes);
}

}  // namespace

FinderAccounting::FinderAccounting(const FinderWalker& forWalker, const FinderThresholds& chosen,
                                   const std::unordered_set<std::string>& allRoots, FinderProgressBox* progressBox,
                                   LinkSet& linkSet)
    : walker(forWalker),
      thresholds(chosen),
      roots(allRoots),
      progress(progressBox),
      links(linkSet),
      volumes(walker.volumeRoots.begin(), walker.volumeRoots.end()),
      large(walker.limits.maxListed),
      old(walker.limits.oldCandidates),
      pool(walker.limits.poolFiles) {}

std::unique_ptr<FolderNotes> FinderAccounting::makeNotes() const {
    return std::make_unique<FinderNotes>(thresholds);
}

void FinderAccounting::prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) {
    if (parent == nullptr) return;
    const bool isToolsAround = dynamic_cast<const FinderNotes&>(*parent).isTools();
    of(notes).isToolsAround = isToolsAround || finder_places::isToolsName(folder.name);
}

WalkDecision FinderAccounting::decide(const WalkedFolder& folder, const FolderNotes& around) {
    const std::string path(folder.path);
    if (roots.contains(path)) return rootDecision;
    // A folder that was chosen is searched, whatever it is.
    const bool isInRepository = dynamic_cast<const FinderNotes&>(around).isRepository() && folder.depth > 1;
    if (isInRepository || finder_places::isRepositoryName(folder.name)) return repositoryDecision;
    if (isPackageName(folder.name)) return packageDecision;
    if (volumes.contains(path)) return otherVolumeDecision;
    walker.walker.lookedUp(path);
    return walkDecisionOf(walker.access.decision(path));
}

void FinderAccounting::leftOut(const WalkedFolder& folder, WalkDecision decision) {
    if (decision.leftOutFor == packageDecision.leftOutFor) return add(out.packagesSkipped, 1);
    if (decision.leftOutFor == repositoryDecision.leftOutFor) return;  // counted with the folder that holds it
    if (decision.leftOutFor == rootDecision.leftOutFor) return;
    if (decision.leftOutFor == otherVolumeDecision.leftOutFor) return onOtherVolume(folder);
    leave({std::string(folder.path), reasonOf(decision)});
}

void FinderAccounting::leave(const FinderBlockedPlace& place) {
    const auto name = [&](std::vector<std::string>& places) {
        if (places.size() < mostPlacesNamed) places.push_back(place.path);
    };
    if (place.reason == UnreadableReason::needsFullDiskAccess) {
        name(out.needsFullDiskAccess);
        add(out.needsFullDiskAccessCount, 1);
    } else if (place.reason == UnreadableReason::mediaLibrary) {
        add(out.leftOutLibraries, 1);
    } else if (isLeftOutOnPurpose(place.reason)) {
        name(out.leftOut);
    } else {
        add(out.unreadable, 1);
    }
}

void FinderAccounting::tooDeep(const WalkedFolder& /*folder*/) {
    add(out.notMeasured, 1);
}

void FinderAccounting::couldNotOpen(const WalkedFolder& folder, int error) {
    const auto reason = unreadableReasonOf(error, walker.walker.fullDiskAccess);
    if (folder.depth == 0) {
        rootFailure = reason;
    } else {
        leave({std::string(folder.path), reason});
    }
}

void FinderAccounting::onOtherVolume(const WalkedFolder& /*folder*/) {
    add(out.notMeasured, 1);
}

void FinderAccounting::listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                              int error) {
    const FinderNotes& found = of(notes);
    if (end == ListingEnd::failed && folder.depth == 0) {
        rootFailure = unreadableReasonOf(error, walker.walker.fullDiskAccess);
        return;
    }
    add(out.foldersRead, 1);
    if (end == ListingEnd::failed) add(out.unreadable, 1);
    if (found.isRepository() && folder.depth > 0) return add(out.repositoriesSkipped, 1);
    add(out.unreadable, found.others.unreadable);
    add(out.linksNotFollowed, found.others.links);
    add(out.notMeasured, found.others.otherVolumes);
    add(out.filesSeen, found.others.files);
    add(out.cloudOnlyFiles, found.others.cloudOnly);
    const std::int32_t device = status.device;
    for (const std::uint64_t number : found.linkedOthers) {
        // Another name of it, where a search takes files up, is to be met as the first.
        if (found.isTools() || links.insert({device, number})) add(out.filesSeen, 1);
    }
    std::shared_ptr<const std::string> path;
    for (const FinderNotes::File& file : found.files()) {
        const bool isKnown = file.stamp.linkCount >= 2 && !found.isTools() && !links.insert(file.stamp.identity());
        if (isKnown) continue;
        add(out.filesSeen, 1);
        if (file.isDataless) {
            add(out.cloudOnlyFiles, 1);
        } else if (!found.isTools()) {
            if (!path) path = std::make_shared<const std::string>(folder.path);
            take({.path = FinderPath(path, found.nameOf(file)), .stamp = file.stamp, .added = file.added});
        }
    }
    report(folder.path);
}

void FinderAccounting::take(WalkedFile file) {
    if (thresholds.mayBeDuplicate(file.stamp) && !pool.offer({.path = file.path, .stamp = file.stamp}))
        add(out.poolOverflow, 1);
    if (thresholds.isOld(file.stamp, file.newestDate()) && !old.offer(file)) add(out.oldOverflow, 1);
    if (!thresholds.isLarge(file.stamp)) return;
    add(out.largeCount, 1);
    out.largeBytes = checkedAdd(out.largeBytes, file.stamp.allocated, "the size of the large files");
    std::ignore = large.offer(std::move(file));
}

void FinderAccounting::finished(const WalkedFolder& folder, bool stopped) {
    if (folder.depth > 0) return;
    out.stopped = out.stopped || stopped;
}

FinderCandidates FinderAccounting::take() {
    out.large = large.take();
    out.oldCandidates = old.take();
    out.pool = pool.take();
    return std::move(out);
}

void FinderAccounting::report(std::string_view folder) {
    if (progress == nullptr || ++foldersSinceReport < foldersBetweenReports) return;
    foldersSinceReport = 0;
    FinderProgress now;
    now.files = out.filesSeen;
    now.folders = out.foldersRead;
    now.unreadable = out.unreadable;
    now.notMeasured = out.notMeasured;
    now.current = folder;
    progress->set(std::move(now));
}

}  // namespace vostrel
