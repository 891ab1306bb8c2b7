#include "filesystem/SizeWalker.h"

#include <utility>

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

SizeWalker::Place SizeWalker::examine(const std::string& root) const {
    const auto found = source->lookUp(root);
    if (!found) return resultOf(found.error(), fullDiskAccess);
    if (found->type == EntryType::link) return WalkResult(SkippedLink{});
    lookedUp(root);
    if (const auto decision = access(root); decision.blockedFor) return WalkResult(Unreadable{*decision.blockedFor});
    if (found->type != EntryType::folder) return Other{*found};
    auto resolved = source->resolve(root);
    if (!resolved) return resultOf(resolved.error(), fullDiskAccess);
    if (*resolved != root) {  // a link further up may lead to where nothing may be opened
        lookedUp(*resolved);
        if (const auto decision = access(*resolved); decision.blockedFor)
            return WalkResult(Unreadable{*decision.blockedFor});
    }
    return Folder{std::move(*resolved), *found};
}

WalkResult SizeWalker::walk(const std::string& root, const Marks& marks, const WalkBudget& budget,
                            LinkSet& links) const {
    const Place place = examine(root);
    if (const auto* result = std::get_if<WalkResult>(&place)) return *result;
    if (const auto* other = std::get_if<Other>(&place)) return measureFile(other->status, links);

    const MarkIndex markIndex(marks);
    SizeAccounting accounting(*this, markIndex, MarkIndex::keyOf(root), links);
    FolderWalk folderWalk(*source, accounting, ListingDetail::sizes, helpers);
    const auto ending = folderWalk.walk(std::get<Folder>(place).path, std::nullopt, maxDepth, budget);
    if (ending == FolderWalk::Ending::notRun) return Unreadable{UnreadableReason::couldNotRead};
    return std::move(accounting).result();
}

}  // namespace vostrel
