#include "cleaning/ThresholdSession.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "base/Checked.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/VolumeFacts.h"
#include "rules/PresetFolders.h"
#include "rules/TargetResolver.h"

namespace vostrel {

namespace {

/// So many runs of the log are looked at for what rules removed.
constexpr std::size_t runsLookedAt = 200;

std::int64_t removedBytes(const RunReport& report) {
    return saturatingAdd(report.deletedBytes, report.movedToTrashBytes);
}

/// What each rule removed when it last removed something.
std::map<Uuid, std::int64_t> lastRemoved(const CleanLog& log) {
    std::map<Uuid, std::int64_t> amounts;
    for (const RunReport& report : log.recent(runsLookedAt)) {
        if (const std::int64_t bytes = removedBytes(report); bytes > 0) amounts.try_emplace(report.ruleID, bytes);
    }
    return amounts;
}

/// How easily comes back what the rule removes, the easiest first.
int loss(const Rule& rule, const PresetCatalog& catalog) {
    switch (cleanupCategory(rule.target, catalog)) {
        case CleanupCategory::regenerable:
            return catalog.presetOf(rule.target)->largeRedownload ? 1 : 0;
        case CleanupCategory::projectArtifacts:
            return 2;
        case CleanupCategory::userFolders:
            break;
    }
    return 3;
}

/// The volume's UUID; subvolumes share it, and its space.
std::optional<std::string> spaceOf(const std::filesystem::path& folder) {
    const OwnedDescriptor opened(openFolder(folder));
    auto uuid = opened.isOpen() ? volumeUUID(opened.get()) : std::nullopt;
    if (uuid) uuid->erase(std::min(uuid->find('/'), uuid->size()));
    return uuid;
}

}  // namespace

ThresholdSession::Outcome ThresholdSession::run(const ThresholdRequest& request, std::span<const Rule> rules,
                                                const PresentOf& presentOf, BatchControl& control) const {
    Outcome outcome;
    if (!control.isCancelled()) outcome.freeAfter = freeNow();
    for (const Rule& rule : ordered(rules)) {
        const bool goesOn = outcome.freeAfter && *outcome.freeAfter < request.targetFree && !control.isCancelled();
        if (!goesOn) break;
        outcome.reports.push_back(runner.run(rule, RunTrigger::belowLine, presentOf(rule), *control.control(rule.id)));
        outcome.countedBytes = saturatingAdd(outcome.countedBytes, removedBytes(outcome.reports.back()));
        outcome.freeAfter = freeNow();
    }
    outcome.interrupted = control.isCancelled();
    return outcome;
}

std::vector<Rule> ThresholdSession::ordered(std::span<const Rule> rules) const {
    const PresetCatalog& catalog = runner.planner.catalog;
    std::vector<Rule> eligible;
    std::ranges::copy_if(rules, std::back_inserter(eligible),
                         [&](const Rule& rule) { return isStartedBy(rule, catalog) && !isElsewhere(rule); });
    const auto amounts = lastRemoved(runner.log);
    const auto place = [&](const Rule& rule) {
        const auto known = amounts.find(rule.id);
        return std::tuple(loss(rule, catalog), rule.action == CleanupAction::trash,
                          known == amounts.end() ? 0 : -known->second);
    };
    std::ranges::stable_sort(eligible, {}, place);
    return eligible;
}

bool ThresholdSession::isStartedBy(const Rule& rule, const PresetCatalog& catalog) {
    return rule.enabled && std::ranges::find(rule.triggers, RuleTrigger(BelowLineTrigger{})) != rule.triggers.end() &&
           rule.approvalHolds(catalog);
}

bool ThresholdSession::isElsewhere(const Rule& rule) const {
    const auto roots = runner.planner.resolver.resolve(rule.target, runner.planner.catalog);
    if (!roots) return false;
    bool exists = false;
    for (const ResolvedRoot& root : *roots) {
        const auto verdict = runner.lookup.look(root.url);
        exists = exists || !std::holds_alternative<UnattendedLookup::Missing>(verdict);
        const auto* const allowed = std::get_if<UnattendedLookup::Allowed>(&verdict);
        if (allowed && !isOnMeasuredVolume(allowed->realPath)) return true;
    }
    return !exists;
}

std::optional<std::int64_t> ThresholdSession::freeNow() const {
    const auto capacity = reader.read(volume, ImportantFigure::included);
    return capacity ? std::optional(capacity->displayedFree()) : std::nullopt;
}

std::function<bool(const std::filesystem::path&)> sharesSpaceWith(std::filesystem::path volume) {
    return [measured = std::move(volume)](const std::filesystem::path& folder) {
        const auto space = spaceOf(folder);
        return space && space == spaceOf(measured);
    };
}

}  // namespace vostrel
