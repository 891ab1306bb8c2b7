#pragma once

#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/BuildFolderExamination.h"
#include "cleaning/CleanupExecutor.h"
#include "cleaning/ItemVerdict.h"
#include "cleaning/PresetItems.h"
#include "cleaning/ProjectChecks.h"
#include "filesystem/MeasuredItem.h"

namespace vostrel {

/// Checks the items of one run again, each right before it is touched. One for a run; one thread uses it.
class ItemRecheck {
public:
    /// All of them outlive the object. `isCancelled` ends measuring early.
    ItemRecheck(const CleanupExecutor& ofExecutor, const CleanupPlan& ofRun, const CleanupExecutor::Order& told,
                std::function<bool()> isCancelled);

    /// Why this item is left alone; nothing when it is still exactly what the preview saw.
    [[nodiscard]] std::optional<ItemVerdict> problem(const PlannedItem& item);

    /// Something of the item is gone by the run's own doing.
    void removed(const PlannedItem& item) { projects.removed(item); }

private:
    using Check = std::optional<ItemVerdict> (ItemRecheck::*)(const PlannedItem&);

    // Of all items together, and of all items of a root.
    [[nodiscard]] std::optional<ItemVerdict> checkPlan() const;
    [[nodiscard]] std::optional<ItemVerdict> checkRoot(const PlanRoot& root) const;

    [[nodiscard]] std::optional<ItemVerdict> checkGate(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkGuards(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkRule(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkIdentity(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> measure(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkDates(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkContent(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkProject(const PlannedItem& item);
    [[nodiscard]] std::optional<ItemVerdict> checkBuildFolder(const PlannedItem& item);

    [[nodiscard]] const PlanRoot& rootOf(const PlannedItem& item) const { return plan.roots[item.rootIndex]; }
    [[nodiscard]] std::optional<int> minAgeDays() const;
    [[nodiscard]] bool wasJustChanged(Date newest) const;
    [[nodiscard]] WalkBudget budget() const;

    const CleanupExecutor& executor;
    const CleanupPlan& plan;
    const CleanupExecutor::Order& order;
    std::function<bool()> cancelled;
    std::optional<ItemVerdict> planProblem;
    std::vector<std::optional<ItemVerdict>> rootProblems;
    RuleFilter::CompiledGlobs names;
    Glob::Patterns exclusions;
    const Preset* preset;
    std::optional<PresetItems> presetItems;
    SystemFolderSource source;
    BuildFolderExamination examination;
    ProjectChecks projects;
    /// The item that is being checked.
    MeasuredItem measured;
};

}  // namespace vostrel
