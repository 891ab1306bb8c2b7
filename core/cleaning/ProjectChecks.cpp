#include "cleaning/ProjectChecks.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cleaning/ItemSentences.h"

namespace vostrel {

ProjectChecks::ProjectChecks(const CleanupPlan& ofRun, int daysUntouched, ProjectMeasuring measuring)
    : plan(ofRun), untouchedDays(daysUntouched), measureProject(std::move(measuring)) {
    for (const PlannedItem& item : plan.items) {
        if (item.project) holders[item.project->folder];
    }
    // A project inside another is a part of that one too.
    for (const PlannedItem& item : plan.items) {
        if (!item.project) continue;
        const auto holder = item.url.parent_path();
        for (auto around = holder; around.has_relative_path(); around = around.parent_path()) {
            if (const auto project = holders.find(around); project != holders.end()) project->second.insert(holder);
        }
    }
}

std::optional<ItemVerdict> ProjectChecks::problem(const PlannedItem& item, const WalkBudget& budget) {
    const ProjectStamp& stamp = *item.project;
    if (const auto known = settled.find(stamp.folder); known != settled.end()) return known->second;
    auto verdict = judge(measure(item, budget), stamp, budget.clock());
    if (verdict) settled.emplace(stamp.folder, *verdict);
    return verdict;
}

ProjectMeasure ProjectChecks::measure(const PlannedItem& item, const WalkBudget& budget) {
    const auto& project = item.project->folder;
    const Date now = budget.clock();
    const auto known = last.find(project);
    const bool serves = known != last.end() && now >= known->second.at && now - known->second.at < measureLifetime;
    if (serves) return known->second.measure;
    ProjectQuestion question{
        project, plan.roots.at(item.rootIndex).exception, holders.at(project), {}, budget.isCancelled};
    for (const auto& holder : question.holders) {
        if (removedFrom.contains(holder)) question.removedFrom.insert(holder);
    }
    return last.insert_or_assign(project, Measured{now, measureProject(question)}).first->second.measure;
}

std::optional<ItemVerdict> ProjectChecks::judge(const ProjectMeasure& measure, const ProjectStamp& stamp, Date now) {
    if (!measure.newestSource) return ItemVerdict::changed(sentences::item::projectNotChecked);
    const bool isAsBefore = std::ranges::all_of(
        measure.entries, [&](const auto& holder) { return hasExpectedEntries(holder.first, holder.second); });
    if (!isAsBefore || *measure.newestSource > stamp.newestSource)
        return ItemVerdict::changed(sentences::item::projectChanged);
    if (*measure.newestSource > now - std::chrono::days(untouchedDays))
        return ItemVerdict::changed(sentences::item::projectInUse(untouchedDays));
    return std::nullopt;
}

/// A measure may have been taken before the last removals: then it has the names that went since.
bool ProjectChecks::hasExpectedEntries(const std::filesystem::path& holder, const std::set<std::string>& names) {
    const auto& before = entriesBefore.try_emplace(holder, names).first->second;
    const auto removed = removedFrom.find(holder);
    if (removed == removedFrom.end()) return names == before;
    const auto without = [&gone = removed->second](const std::set<std::string>& all) {
        std::set<std::string> rest;
        std::ranges::set_difference(all, gone, std::inserter(rest, rest.end()));
        return rest;
    };
    return without(names) == without(before);
}

void ProjectChecks::removed(const PlannedItem& item) {
    if (item.project) removedFrom[item.url.parent_path()].insert(item.url.filename());
}

}  // namespace vostrel
