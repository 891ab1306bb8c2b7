#include "rules/ProjectScanner.h"

#include <algorithm>
#include <cerrno>

#include "filesystem/SizeWalker.h"
#include "rules/ArtifactRecognition.h"
#include "rules/ProjectAccounting.h"

namespace vostrel {

ProjectScanner::Discovery ProjectScanner::discover(const std::filesystem::path& codeFolder,
                                                   const std::optional<GuardException>& exception, WalkVolume volume,
                                                   const std::set<ArtifactKind>& kinds,
                                                   const WalkBudget& budget) const {
    const PathGuards::WalkRoot root = guards.walkRoot(codeFolder, exception);
    const ProjectQuestions questions{guards, root, kinds, discoveryDepth, 0, {}, watcher};
    ArtifactRecognition recognition(source, volume, [&] { return budget.isSpent(); });
    Discovery discovery;
    ProjectAccounting accounting(questions, recognition, discovery);
    FolderWalk walk(source, accounting, ListingDetail::facts, helpers);
    const auto ending = walk.walk(codeFolder.native(), volume, SizeWalker::usualMaxDepth, budget);
    if (ending == FolderWalk::Ending::notRun) discovery.rootError = EPERM;
    discovery.cancelled = ending == FolderWalk::Ending::stopped && budget.isCancelled && budget.isCancelled();
    discovery.timedOut = ending == FolderWalk::Ending::stopped && !discovery.cancelled;
    std::ranges::sort(discovery.candidates, {}, &Candidate::artifact);
    return discovery;
}

std::optional<Date> ProjectScanner::newestSource(const std::filesystem::path& project,
                                                 const std::optional<GuardException>& exception,
                                                 const WalkBudget& budget,
                                                 const std::set<std::filesystem::path>& removedFrom) const {
    const auto status = source.lookUp(project.native());
    if (!status) return std::nullopt;
    const WalkVolume volume{status->device, status->mount};
    const PathGuards::WalkRoot root = guards.walkRoot(project, exception);
    const ProjectQuestions questions{guards, root, {}, 0, sourceWalkDepth, removedFrom, watcher};
    ArtifactRecognition recognition(source, volume, [&] { return budget.isSpent(); });
    Discovery ignored;
    ProjectAccounting accounting(questions, recognition, ignored);
    FolderWalk walk(source, accounting, ListingDetail::facts, helpers);
    walk.walk(project.native(), volume, SizeWalker::usualMaxDepth, budget);
    return ignored.rootError == 0 ? accounting.newestOfAll() : std::nullopt;
}

}  // namespace vostrel
