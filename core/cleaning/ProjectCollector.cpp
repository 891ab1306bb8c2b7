#include "cleaning/ProjectCollector.h"

#include <utility>

#include "cleaning/ItemSelection.h"
#include "filesystem/ItemAccounting.h"
#include "filesystem/SizeWalker.h"
#include "rules/ArtifactFacts.h"

namespace vostrel {

ProjectCollector::ProjectCollector(const CleanupPlanner& forPlanner, const Rule& forRule,
                                   const ProjectScanTarget& forTarget, Date date,
                                   const std::function<bool()>& cancelled, CleanupPlan& into)
    : planner(forPlanner),
      rule(forRule),
      target(forTarget),
      now(date),
      isCancelled(cancelled),
      plan(into),
      scanner(forPlanner.guards, *forPlanner.source, forPlanner.helpers),
      examination(*forPlanner.source) {
    if (!planner.progress) return;
    scanner.watch([this](std::string_view folder) {
        soFar.folder = folder;
        planner.progress->set(soFar);
    });
}

std::optional<PlanError> ProjectCollector::collect(const std::vector<OpenedRoot>& roots) {
    WalkBudget budget{planner.clock() + planner.projectScanBudget, isCancelled, planner.clock};
    for (const OpenedRoot& root : roots) {
        if (auto error = scan(root, budget)) return error;
    }
    budget.deadline = planner.clock() + planner.timeLimit;
    for (std::size_t at = 0; at < roots.size(); ++at) {
        for (const auto& candidate : candidates[at]) {
            if (isCancelled()) return PlanError::of(PlanError::Kind::cancelled);
            measure(roots[at], at, candidate, budget);
        }
    }
    return std::nullopt;
}

std::optional<PlanError> ProjectCollector::scan(const OpenedRoot& root, const WalkBudget& budget) {
    auto discovery = scanner.discover(root.root.url, root.root.exception, {root.status.device, root.status.mount},
                                      target.kinds, budget);
    if (discovery.cancelled) return PlanError::of(PlanError::Kind::cancelled);
    const bool isTheSame =
        root.isStillThere() &&
        (discovery.rootError != 0 || discovery.root == FileIdentity{root.status.device, root.status.inode});
    if (!isTheSame) return PlanError::of(PlanError::Kind::rootChanged);
    if (discovery.rootError != 0) return PlanError::of(PlanError::Kind::rootUnreadable);
    plan.roots.push_back(root.root);
    report(root, discovery);
    return std::nullopt;
}

void ProjectCollector::report(const OpenedRoot& root, ProjectScanner::Discovery& discovery) {
    for (auto& item : discovery.leftOut)
        plan.skipped.push_back(std::move(item));
    for (auto& path : discovery.unreadable)
        plan.skipped.push_back({std::move(path), SkipReason::unreadable, std::nullopt});
    if (discovery.timedOut) {
        plan.skipped.push_back({root.root.url, SkipReason::timedOut,
                                "Vostrel ran out of time looking for projects in " +
                                    planner.guards.displayPath(root.root.url) + ", so it may have missed some."});
    }
    std::erase_if(discovery.candidates, [this](const auto& candidate) { return !isUntouched(candidate); });
    candidates.push_back(std::move(discovery.candidates));
}

bool ProjectCollector::isUntouched(const ProjectScanner::Candidate& candidate) const {
    return candidate.newestSource <= now - std::chrono::days(target.untouchedDays);
}

void ProjectCollector::measure(const OpenedRoot& root, std::size_t rootIndex,
                               const ProjectScanner::Candidate& candidate, const WalkBudget& budget) {
    const PathGuards::WalkRoot walkRoot = planner.guards.walkRoot(candidate.artifact, root.root.exception);
    const ItemQuestions questions{ItemsAre::theFolderItself, planner.guards, walkRoot, factsOf(candidate.kind).persons,
                                  [](std::string_view, std::uint64_t, EntryType) { return true; }};
    ItemSelection selection(rule, root, rootIndex, now, plan);
    MeasuredItem measured;
    measured.trouble = MeasuredItem::Trouble::changedMeanwhile;  // unless the walk finds it
    ItemAccounting accounting(questions, *planner.source, links,
                              [&](MeasuredItem&& item) { measured = std::move(item); });
    FolderWalk walk(*planner.source, accounting, ListingDetail::facts, planner.helpers);
    const WalkVolume volume{root.status.device, root.status.mount};
    walk.walk(candidate.artifact.native(), volume, SizeWalker::usualMaxDepth, budget);
    const bool wasMeasured = measured.trouble == MeasuredItem::Trouble::none;
    if (wasMeasured && measured.identity != candidate.identity)
        measured.trouble = MeasuredItem::Trouble::changedMeanwhile;
    // Reading a list that is only in the cloud would download it, and such a folder stays anyway.
    const bool isOrdinary = measured.trouble == MeasuredItem::Trouble::none && !measured.facts.containsExcluded &&
                            !measured.facts.containsDataless;
    if (isOrdinary) examine(candidate, volume, budget, measured);
    measured.parent = candidate.parent;
    soFar.files += measured.facts.fileCount;
    soFar.bytes += measured.facts.bytes;
    if (!isCancelled()) selection.takeBuildFolder(candidate.artifact, candidate.stamp(), std::move(measured));
}

void ProjectCollector::examine(const ProjectScanner::Candidate& candidate, const WalkVolume& volume,
                               const WalkBudget& budget, MeasuredItem& measured) {
    switch (examination.examine(candidate.artifact.native(), candidate.kind, volume, budget)) {
        case BuildFolderState::theTools:
            return;
        case BuildFolderState::aPersons:
            measured.facts.containsExcluded = true;
            return;
        case BuildFolderState::couldNotRead:
            measured.trouble = MeasuredItem::Trouble::couldNotRead;
            return;
        case BuildFolderState::notReadInTime:
            measured.trouble = MeasuredItem::Trouble::notMeasuredInTime;
            return;
    }
}

}  // namespace vostrel
