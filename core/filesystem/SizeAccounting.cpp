#include "filesystem/SizeAccounting.h"

#include <utility>

#include "base/Checked.h"

namespace vostrel {

void SizeNotes::entry(const FolderEntry& entry) {
    const bool isElsewhere = entry.type == EntryType::folder;  // the walk hands over only those it cannot enter
    if (entry.error != 0) {
        totals.addUnreadable(unreadableReasonOf(entry.error, fullDiskAccess));
    } else if (entry.type == EntryType::link) {
        totals.linksSkipped = checkedAdd<std::int64_t>(totals.linksSkipped, 1, "the number of links");
    } else if (isElsewhere) {
        totals.otherVolumes = checkedAdd<std::int64_t>(totals.otherVolumes, 1, "the number of other volumes");
    } else {
        if (entry.linkCount >= 2) {
            linkedFiles.push_back({entry.fileID, entry.allocated});
        } else {
            totals.addFile(entry.allocated);
        }
        return;
    }
    if (keepsNames) notMeasured.push_back({std::string(entry.name), entry});
}

void SizeNotes::clear() {
    totals = {};
    linkedFiles.clear();
    notMeasured.clear();
    key.clear();
    keepsNames = false;
}

std::size_t SizeNotes::footprint() const {
    return linkedFiles.capacity() * sizeof(LinkedFile) + notMeasured.capacity() * sizeof(NamedEntry);
}

SizeAccounting::SizeAccounting(const SizeWalker& forWalker, const MarkIndex& markIndex, std::string key,
                               LinkSet& linkSet)
    : walker(forWalker), marks(markIndex), links(linkSet), rootKey(std::move(key)) {}

std::unique_ptr<FolderNotes> SizeAccounting::makeNotes() const {
    return std::make_unique<SizeNotes>(walker.fullDiskAccess);
}

void SizeAccounting::prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) {
    if (marks.isEmpty()) return;
    auto& prepared = dynamic_cast<SizeNotes&>(notes);
    if (parent == nullptr) {
        prepared.key = rootKey;
    } else {
        prepared.key = dynamic_cast<const SizeNotes&>(*parent).key;
        MarkIndex::appendName(prepared.key, folder.name);
    }
    prepared.keepsNames = marks.isHolder(prepared.key);
}

WalkDecision SizeAccounting::decide(const WalkedFolder& folder, const FolderNotes& /*around*/) {
    if (rootFailure) return walkDecisionOf(AccessDecision{rootFailure});  // there will be no sum to add to
    const std::string path(folder.path);
    walker.lookedUp(path);
    return walkDecisionOf(walker.access(path));
}

void SizeAccounting::leftOut(const WalkedFolder& folder, WalkDecision decision) {
    const UnreadableReason reason = reasonOf(decision);
    if (reason != UnreadableReason::mediaLibrary) return countUnreadable(folder, reason);
    auto& count = levels.back().totals.leftOutLibraries;
    count = checkedAdd<std::int64_t>(count, 1, "the number of libraries");
    skipMarks(keyOf(folder), reason);
}

void SizeAccounting::tooDeep(const WalkedFolder& folder) {
    countUnreadable(folder, UnreadableReason::tooDeep);
}

void SizeAccounting::couldNotOpen(const WalkedFolder& folder, int error) {
    const UnreadableReason reason = unreadableReasonOf(error, walker.fullDiskAccess);
    if (folder.depth == 0) {
        rootFailure = reason;
    } else {
        countUnreadable(folder, reason);
    }
}

void SizeAccounting::onOtherVolume(const WalkedFolder& folder) {
    auto& totals = levels.empty() ? measured.totals : levels.back().totals;
    totals.otherVolumes = checkedAdd<std::int64_t>(totals.otherVolumes, 1, "the number of other volumes");
    skipMarks(keyOf(folder), UnreadableReason::otherDisk);
}

void SizeAccounting::listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& notes, ListingEnd end,
                            int error) {
    const auto& found = dynamic_cast<const SizeNotes&>(notes);
    levels.push_back({found.totals, found.key, std::nullopt});
    const UnreadableReason reason = unreadableReasonOf(error, walker.fullDiskAccess);
    if (end == ListingEnd::failed && folder.depth == 0) rootFailure = reason;
    // The links of a root without a sum stay for the walks that share the set.
    if (!rootFailure) countLinkedFiles(found, status.device);
    skipMarksOfEntries(found);
    if (end != ListingEnd::failed) return;
    levels.back().totals.addUnreadable(reason);
    levels.back().listingFailure = reason;
}

void SizeAccounting::finished(const WalkedFolder&, bool stopped) {
    Level level = std::move(levels.back());
    levels.pop_back();
    level.totals.stopped = stopped;
    if (const auto* names = marks.at(level.key)) {
        for (const auto& name : *names)
            measured.marks.emplace(name, level.totals);
    }
    // What a failed listing did not come to may hold marks; those that it did come to are recorded already.
    if (level.listingFailure) skipMarks(level.key, *level.listingFailure);
    (levels.empty() ? measured.totals : levels.back().totals).add(level.totals);
}

WalkResult SizeAccounting::result() && {
    if (rootFailure) return Unreadable{*rootFailure};
    return std::move(measured);
}

std::string SizeAccounting::keyOf(const WalkedFolder& folder) const {
    if (marks.isEmpty()) return {};
    if (levels.empty()) return rootKey;
    std::string key = levels.back().key;
    MarkIndex::appendName(key, folder.name);
    return key;
}

void SizeAccounting::countUnreadable(const WalkedFolder& folder, UnreadableReason reason) {
    levels.back().totals.addUnreadable(reason);
    skipMarks(keyOf(folder), reason);
}

void SizeAccounting::skipMarks(const std::string& key, UnreadableReason reason) {
    if (marks.isEmpty()) return;
    for (auto& name : marks.atOrBelow(key)) {
        if (!measured.marks.contains(name)) measured.skipped.emplace(std::move(name), Unreadable{reason});
    }
}

void SizeAccounting::skipMarksOfEntries(const SizeNotes& notes) {
    for (const auto& [name, entry] : notes.notMeasured) {
        std::string key = levels.back().key;
        MarkIndex::appendName(key, name);
        if (entry.error == 0 && entry.type == EntryType::link) {
            const auto* names = marks.at(key);
            if (names == nullptr) continue;
            for (const auto& mark : *names)
                measured.skipped.emplace(mark, SkippedLink{});
            continue;
        }
        const UnreadableReason reason =
            entry.error != 0 ? unreadableReasonOf(entry.error, walker.fullDiskAccess) : UnreadableReason::otherDisk;
        skipMarks(key, reason);
    }
}

void SizeAccounting::countLinkedFiles(const SizeNotes& notes, std::int32_t device) {
    for (const auto& file : notes.linkedFiles) {
        if (links.insert({device, file.fileID})) levels.back().totals.addFile(file.allocated);
    }
}

}  // namespace vostrel
