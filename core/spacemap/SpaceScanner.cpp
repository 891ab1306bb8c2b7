#include "spacemap/SpaceScanner.h"

#include <chrono>
#include <unordered_set>
#include <utility>

#include "base/Visit.h"
#include "filesystem/FolderWalk.h"
#include "spacemap/SpaceAccounting.h"
#include "spacemap/SpaceTreeBuilder.h"

namespace vostrel {

namespace {

SpaceTree::RootProblem problemOf(const WalkResult& result) {
    return visit(
        result, [](const Measured&) -> SpaceTree::RootProblem { return Unreadable{}; },
        [](const auto& problem) -> SpaceTree::RootProblem { return problem; });
}

SpaceTree::Ending endingOf(FolderWalk::Ending ending, const WalkBudget& budget) {
    if (ending != FolderWalk::Ending::stopped) return SpaceTree::Ending::complete;
    const bool isCancelled = budget.isCancelled && budget.isCancelled();
    return isCancelled ? SpaceTree::Ending::cancelled : SpaceTree::Ending::deadline;
}

}  // namespace

SpaceTree SpaceScanner::scan(const std::string& path, std::string name, const WalkBudget& budget,
                             ScanProgressBox* progress, LinkSet& links, Date now) const {
    const std::uint64_t start = clock();
    if (progress != nullptr) progress->reset();
    const auto elapsed = [&] {
        return std::chrono::duration<double>(std::chrono::nanoseconds(clock() - start)).count();
    };
    const auto failedFor = [&](const SpaceTree::RootProblem& problem) {
        return SpaceTreeBuilder::problem(problem, path, std::move(name), now, elapsed());
    };
    const auto place = walker.examine(path);
    if (const auto* result = std::get_if<WalkResult>(&place)) return failedFor(problemOf(*result));
    if (std::holds_alternative<SizeWalker::Other>(place)) return failedFor(NotAFolder{});

    const auto& root = std::get<SizeWalker::Folder>(place);
    const std::unordered_set<std::string> volumes(volumeRoots.begin(), volumeRoots.end());
    SpaceAccounting accounting({walker, limits, volumes, links, progress, clock}, name);
    FolderWalk folderWalk(*walker.source, accounting, ListingDetail::sizes, walker.helpers);
    const auto ending = folderWalk.walk(root.path, std::nullopt, walker.maxDepth, budget);
    if (ending == FolderWalk::Ending::notRun) return failedFor(Unreadable{UnreadableReason::couldNotRead});
    if (accounting.rootFailure()) return failedFor(Unreadable{*accounting.rootFailure()});

    SpaceDraft draft = SpaceTreeBuilder::capped(accounting.takeRoot(), limits.maxNodes);
    SpaceTree tree = SpaceTreeBuilder::freeze(std::move(draft), root.path, endingOf(ending, budget), std::nullopt, now,
                                              0, accounting.stats());
    tree.duration = elapsed();
    return tree;
}

std::uint64_t SpaceScanner::steadyNanoseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count());
}

}  // namespace vostrel
