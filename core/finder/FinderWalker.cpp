#include "finder/FinderWalker.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

#include "base/Visit.h"
#include "filesystem/FolderWalk.h"
#include "finder/FinderAccounting.h"
#include "finder/FinderListing.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/VolumeFacts.h"

namespace vostrel {

namespace {

using Kind = FinderRootProblem::Kind;

FinderRootProblem problemOf(const WalkResult& result) {
    return visit(
        result, [](const Missing&) { return FinderRootProblem{Kind::missing, {}}; },
        [](const SkippedLink&) { return FinderRootProblem{Kind::link, {}}; },
        [](const Unreadable& unreadable) { return FinderRootProblem{Kind::unreadable, unreadable.reason}; },
        [](const auto&) { return FinderRootProblem{Kind::unreadable, UnreadableReason::couldNotRead}; });
}

std::optional<RootIdentity> identityOf(const SizeWalker::Folder& folder) {
    const OwnedDescriptor open(openFolder(folder.path));
    const auto uuid = open.isOpen() ? volumeUUID(open.get()) : std::nullopt;
    if (!uuid) return std::nullopt;
    return RootIdentity{*uuid, folder.status.inode};
}

FinderRootState examined(const SizeWalker& walker, const std::string& root) {
    const auto place = walker.examine(root);
    if (const auto* result = std::get_if<WalkResult>(&place)) return FinderUnsearchedRoot{root, problemOf(*result)};
    const auto* folder = std::get_if<SizeWalker::Folder>(&place);
    if (folder == nullptr) return FinderUnsearchedRoot{root, {Kind::notAFolder, {}}};
    return FinderRootInfo{.given = root, .path = folder->path, .identity = identityOf(*folder)};
}

std::unordered_set<std::string> pathsOf(const std::vector<FinderRootState>& roots) {
    std::unordered_set<std::string> paths;
    for (const FinderRootState& root : roots) {
        if (const auto* info = std::get_if<FinderRootInfo>(&root)) paths.insert(info->path);
    }
    return paths;
}

}  // namespace

FinderCandidates FinderWalker::walk(const std::vector<std::string>& roots, Date now, const WalkBudget& budget,
                                    FinderProgressBox* progress, LinkSet& links) const {
    SizeWalker examiner = walker;
    examiner.access = [this](const std::string& path) { return access.decision(path); };
    std::vector<FinderRootState> states;
    for (const std::string& root : roots)
        states.push_back(examined(examiner, root));

    const FinderThresholds thresholds{.largeBytes = criteria.largeBytes,
                                      .oldMinBytes = criteria.oldMinBytes,
                                      .duplicateMinBytes = criteria.duplicateMinBytes,
                                      .oldCutoff = criteria.oldCutoff(now, calendar)};
    if (progress != nullptr) progress->set({});
    const auto allRoots = pathsOf(states);
    auto rootsLeft = allRoots;
    FinderAccounting accounting(*this, thresholds, allRoots, progress, links);
    FolderWalk folderWalk(*walker.source, accounting, FinderListing::detail, walker.helpers);
    bool isStopped = false;
    for (std::size_t index = 0; index < states.size() && !isStopped; ++index) {
        const auto* root = std::get_if<FinderRootInfo>(&states[index]);
        if (root == nullptr || !rootsLeft.contains(root->path)) continue;  // the same one may be chosen twice
        rootsLeft.erase(root->path);
        const auto ending = folderWalk.walk(root->path, std::nullopt, walker.maxDepth, budget);
        isStopped = ending == FolderWalk::Ending::stopped;
        auto failure = accounting.takeRootFailure();
        if (ending == FolderWalk::Ending::notRun) failure = UnreadableReason::couldNotRead;
        if (failure) states[index] = FinderUnsearchedRoot{root->given, {Kind::unreadable, failure}};
    }
    FinderCandidates found = accounting.take();
    found.roots = std::move(states);
    found.stopped = found.stopped || isStopped;
    return found;
}

}  // namespace vostrel
