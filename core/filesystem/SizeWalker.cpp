#include "filesystem/SizeWalker.h"

#include "base/SystemError.h"
#include "filesystem/MarkIndex.h"
#include "filesystem/SizeAccounting.h"

namespace vostrel {

namespace {

WalkResult resultOf(int error, bool fullDiskAccess) {
    if (isMissing(error)) return Missing{};
    return Unreadable{unreadableReasonOf(error, fullDiskAccess)};
}

/// A single file in the root's place.
WalkResult measureFile(const FileStatus& file, LinkSet& links) {
    Measured measured;
    const bool isCounted = file.linkCount < 2 || links.insert({file.device, file.inode});
    if (isCounted) measured.totals.addFile(file.allocated);
    return measured;
}

}  // namespace

WalkResult SizeWalker::walk(const std::string& root, const Marks& marks, const WalkBudget& budget,
                            LinkSet& links) const {
    const auto found = source->lookUp(root);
    if (!found) return resultOf(found.error(), fullDiskAccess);
    if (found->type == EntryType::link) return SkippedLink{};
    lookedUp(root);
    if (const auto decision = access(root); decision.blockedFor) return Unreadable{*decision.blockedFor};
    if (found->type != EntryType::folder) return measureFile(*found, links);
    const auto resolved = source->resolve(root);
    if (!resolved) return resultOf(resolved.error(), fullDiskAccess);

    const MarkIndex markIndex(marks);
    SizeAccounting accounting(*this, markIndex, MarkIndex::keyOf(root), links);
    FolderWalk folderWalk(*source, accounting, ListingDetail::sizes, helpers);
    const auto ending = folderWalk.walk(*resolved, std::nullopt, maxDepth, budget);
    if (ending == FolderWalk::Ending::notRun) return Unreadable{UnreadableReason::couldNotRead};
    return std::move(accounting).result();
}

}  // namespace vostrel
