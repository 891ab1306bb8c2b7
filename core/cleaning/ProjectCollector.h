#pragma once

#include <map>
#include <optional>
#include <vector>

#include "base/Date.h"
#include "cleaning/BuildFolderExamination.h"
#include "cleaning/CleanupPlanner.h"
#include "filesystem/LinkSet.h"
#include "filesystem/MeasuredItem.h"
#include "rules/ProjectScanner.h"

namespace vostrel {

/// Collects the items of a project scan: the build folders of projects that nobody has touched for the rule's days,
/// each measured like any other item.
class ProjectCollector {
public:
    /// `date` is the plan's. All references outlive the object.
    ProjectCollector(const CleanupPlanner& forPlanner, const Rule& forRule, const ProjectScanTarget& forTarget,
                     Date date, const std::function<bool()>& cancelled, CleanupPlan& into);

    /// First looks through every root, within the planner's budget for project scans, then measures what it found,
    /// within the planner's time limit.
    [[nodiscard]] std::optional<PlanError> collect(const std::vector<OpenedRoot>& roots);

private:
    [[nodiscard]] std::optional<PlanError> scan(const OpenedRoot& root, const WalkBudget& budget);
    void report(const OpenedRoot& root, ProjectScanner::Discovery& discovery);
    void measure(const OpenedRoot& root, std::size_t rootIndex, const ProjectScanner::Candidate& candidate,
                 const WalkBudget& budget);
    /// Notes why a measured folder stays, if it holds more than the tool made, or what somebody keeps under version
    /// control.
    void examine(const ProjectScanner::Candidate& candidate, const WalkVolume& volume, const WalkBudget& budget,
                 MeasuredItem& measured);
    [[nodiscard]] bool isUntouched(const ProjectScanner::Candidate& candidate) const;

    const CleanupPlanner& planner;
    const Rule& rule;
    const ProjectScanTarget& target;
    Date now;
    const std::function<bool()>& isCancelled;
    CleanupPlan& plan;
    ProjectScanner scanner;
    /// By root, what was found below it.
    std::vector<std::vector<ProjectScanner::Candidate>> candidates;
    LinkSet links;
    BuildFolderExamination examination;
    PlanProgress soFar;
};

}  // namespace vostrel
