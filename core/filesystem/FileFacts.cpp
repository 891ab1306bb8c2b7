#include "filesystem/FileFacts.h"

#include <algorithm>

#include "filesystem/FolderSource.h"
#include "filesystem/FolderWalk.h"
#include "filesystem/ItemAccounting.h"
#include "filesystem/LinkSet.h"
#include "filesystem/SizeWalker.h"
#include "platform/FileStatus.h"
#include "platform/LastUsed.h"

namespace vostrel {

namespace {

MeasuredItem measuredFile(const FileStatus& status) {
    MeasuredItem item;
    item.type = status.type;
    item.identity = {status.device, status.inode};
    item.facts.addDates(status.modified, status.changed, status.added);
    item.facts.containsDataless = status.isDataless;
    if (status.type != EntryType::link) item.facts.addFile(status.allocated);
    item.added = status.added;
    item.accessed = status.accessed;
    return item;
}

/// Walks the folder as one item. What cannot be opened at all counts as unreadable.
MeasuredItem measuredFolder(const std::filesystem::path& path, const FileStatus& status,
                            const Glob::Patterns& exclusions, const PathGuards& guards, const WalkBudget& budget,
                            const std::optional<GuardException>& exception) {
    const PathGuards::WalkRoot root = guards.walkRoot(path, exception);
    const ItemQuestions questions{ItemsAre::theFolderItself, guards, root, exclusions,
                                  [](std::string_view, std::uint64_t, EntryType) { return true; }};
    SystemFolderSource source;
    LinkSet links;
    MeasuredItem whole = measuredFile(status);
    whole.facts = {};
    whole.facts.addUnreadable();
    ItemAccounting accounting(questions, source, links, [&](MeasuredItem&& item) { whole = std::move(item); });
    FolderWalk walk(source, accounting, ListingDetail::facts, FolderWalk::usualHelpers());
    walk.walk(path.native(), WalkVolume{status.device, status.mount}, SizeWalker::usualMaxDepth, budget);
    if (whole.identity != FileIdentity{status.device, status.inode}) {
        whole.trouble = MeasuredItem::Trouble::changedMeanwhile;
    }
    return whole;
}

}  // namespace

std::expected<MeasuredItem, FileFacts::MeasureError> measureItem(const std::filesystem::path& path,
                                                                 const Glob::Patterns& exclusions,
                                                                 const PathGuards& guards, const WalkBudget& budget,
                                                                 const std::optional<GuardException>& exception) {
    const auto status = statusOfPath(path);
    if (!status) {
        return std::unexpected(FileFacts::MeasureError{FileFacts::MeasureError::Kind::missingMetadata, status.error()});
    }
    if (status->type != EntryType::folder) return measuredFile(*status);
    return measuredFolder(path, *status, exclusions, guards, budget, exception);
}

std::expected<FileFacts, FileFacts::MeasureError> FileFacts::measure(const std::filesystem::path& path, AgeBasis basis,
                                                                     const Glob::Patterns& exclusions,
                                                                     const PathGuards& guards, const WalkBudget& budget,
                                                                     const std::optional<GuardException>& exception) {
    const auto status = statusOfPath(path);
    if (!status) return std::unexpected(MeasureError{MeasureError::Kind::missingMetadata, status.error()});
    const auto measured = measureItem(path, exclusions, guards, budget, exception);
    if (!measured) return std::unexpected(measured.error());
    const MeasuredItem& item = *measured;
    FileFacts facts;
    facts.url = path;
    facts.isDirectory = item.type == EntryType::folder;
    facts.isSymlink = item.type == EntryType::link;
    facts.bytes = item.facts.bytes;
    facts.newestModified = item.facts.newestModified;
    facts.inUseDate = item.facts.newestUse;
    facts.ageDate = ageDateOf(item, path, basis);
    facts.volumeID = VolumeIdentity{status->device, status->mount};
    facts.unreadableCount = item.facts.unreadableCount;
    facts.timedOut = item.trouble == MeasuredItem::Trouble::notMeasuredInTime;
    facts.containsProtected = item.facts.protectedRefusal.has_value();
    facts.crossesVolume = item.facts.crossesVolume;
    facts.fileCount = item.facts.fileCount;
    facts.containsExcluded = item.facts.containsExcluded;
    facts.identity = item.identity;
    facts.changedMeanwhile = item.trouble == MeasuredItem::Trouble::changedMeanwhile;
    facts.containsDataless = item.facts.containsDataless;
    return facts;
}

Date ageDateOf(const MeasuredItem& item, const std::filesystem::path& path, AgeBasis basis) {
    const Date ownUse = item.added.value_or(item.facts.newestUse);
    switch (basis) {
        case AgeBasis::modified:
            return item.facts.newestModified;
        case AgeBasis::added:
            return ownUse;
        case AgeBasis::lastOpened:
            return std::max(ownUse, lastUsedDate(path, item.accessed).value_or(ownUse));
    }
    return Date::distantFuture();
}

}  // namespace vostrel
