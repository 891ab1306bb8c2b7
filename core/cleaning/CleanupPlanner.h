#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "base/Date.h"
#include "base/ProgressBox.h"
#include "cleaning/PlanError.h"
#include "cleaning/RootOpening.h"
#include "filesystem/FolderSource.h"
#include "filesystem/FolderWalk.h"
#include "rules/CleanupPlan.h"
#include "rules/PresetCatalog.h"
#include "rules/Rule.h"

namespace vostrel {

/// How far a plan is.
struct PlanProgress {
    /// The folder that is being measured.
    std::string folder;
    std::int64_t files = 0;
    std::int64_t bytes = 0;
};

/// Turns a rule into a preview: every item that the rule would clean now and every item that it leaves out, and why.
///
/// It only looks; it never changes the disk. Failures of a root end the plan, failures of an item become a
/// `SkippedItem`. It holds no lock and may run beside other plans and runs; everything it refers to outlives it.
struct CleanupPlanner {
    const PathGuards& guards;
    const TargetResolver& resolver;
    const PresetCatalog& catalog;
    Clock clock = &Date::now;
    /// For the whole plan. Items not measured by then are skipped as timed out.
    Duration timeLimit = std::chrono::seconds(30);
    /// For looking through the code folders of a project scan, before any item is measured.
    Duration projectScanBudget = std::chrono::seconds(120);
    VolumeQuestions volume = {};
    std::shared_ptr<FolderSource> source = std::make_shared<SystemFolderSource>();
    /// Threads that list ahead; the plan is the same for any number.
    unsigned helpers = FolderWalk::usualHelpers();
    /// Where an interface may look meanwhile; may be empty.
    std::shared_ptr<ProgressBox<PlanProgress>> progress = nullptr;

    /// `now` dates the plan and decides ages; `isCancelled` is polled throughout and may be empty.
    [[nodiscard]] std::expected<CleanupPlan, PlanError> plan(const Rule& rule, Date now,
                                                             const std::function<bool()>& isCancelled = {}) const;

    /// The folders that the rule cleans now.
    [[nodiscard]] std::expected<std::set<RootIdentity>, PlanError> currentRoots(const Rule& rule) const;

    /// Whether the approval that the rule stores names other folders than the rule cleans now. Without an approval, or
    /// when the folders cannot be told, nothing is approved any more: it is stale.
    [[nodiscard]] bool approvalIsStale(const Rule& rule) const;
};

}  // namespace vostrel
