#include "cleaning/CleanupPlanner.h"

#include <utility>

#include "base/Glob.h"
#include "cleaning/ItemSelection.h"
#include "cleaning/ProjectCollector.h"
#include "filesystem/ItemAccounting.h"
#include "filesystem/LinkSet.h"
#include "filesystem/ScreenshotName.h"
#include "filesystem/SizeWalker.h"

namespace vostrel {

namespace {

ItemsAre itemsOf(RuleScope scope) {
    switch (scope) {
        case RuleScope::topLevelItems:
            return ItemsAre::topLevelEntries;
        case RuleScope::allFiles:
            return ItemsAre::filesAtAnyDepth;
        case RuleScope::topLevelFiles:
            break;
    }
    return ItemsAre::topLevelFiles;
}

/// Collects the items of a plan's roots, one root after the other.
class PartCollector {
public:
    PartCollector(const CleanupPlanner& forPlanner, const Rule& forRule, Date date, const WalkBudget& limit,
                  RuleFilter::CompiledGlobs globs, Glob::Patterns excluded, std::optional<PresetItems> ofPreset,
                  CleanupPlan& into)
        : planner(forPlanner),
          rule(forRule),
          now(date),
          budget(limit),
          names(std::move(globs)),
          exclusions(std::move(excluded)),
          preset(std::move(ofPreset)),
          plan(into) {}

    std::optional<PlanError> collect(const OpenedRoot& root);

private:
    [[nodiscard]] bool admits(const OpenedRoot& root, std::string_view name, std::uint64_t fileID,
                              EntryType type) const;
    [[nodiscard]] bool recognises(const OpenedRoot& root, std::string_view name) const;
    void showProgress(const WalkedFolder& folder, const TreeFacts& sum);

    const CleanupPlanner& planner;
    const Rule& rule;
    Date now;
    const WalkBudget& budget;
    RuleFilter::CompiledGlobs names;
    Glob::Patterns exclusions;
    std::optional<PresetItems> preset;
    CleanupPlan& plan;
    LinkSet links;
    PlanProgress soFar;
};

std::optional<PlanError> PartCollector::collect(const OpenedRoot& root) {
    const PathGuards::WalkRoot walkRoot = planner.guards.walkRoot(root.root.url, root.root.exception);
    ItemQuestions questions{
        root.root.screenshotFolder ? ItemsAre::topLevelFiles : itemsOf(rule.filter.scope), planner.guards, walkRoot,
        exclusions,
        [&](std::string_view name, std::uint64_t fileID, EntryType type) { return admits(root, name, fileID, type); }};
    if (preset) questions.recognises = [&](std::string_view name) { return recognises(root, name); };
    ItemSelection selection(rule, root, plan.roots.size(), now, plan, preset ? &*preset : nullptr);
    ItemAccounting accounting(questions, *planner.source, links,
                              [&](MeasuredItem&& item) { selection.take(std::move(item)); });
    accounting.keepTo(budget);
    if (planner.progress) {
        accounting.watch([this](const WalkedFolder& folder, const TreeFacts& sum) { showProgress(folder, sum); });
    }
    FolderWalk walk(*planner.source, accounting, ListingDetail::facts, planner.helpers);
    const WalkVolume volume{root.status.device, root.status.mount};
    const auto ending = walk.walk(root.root.url.native(), volume, SizeWalker::usualMaxDepth, budget);
    if (ending == FolderWalk::Ending::notRun) return PlanError::of(PlanError::Kind::rootUnreadable);
    const bool isTheSame =
        accounting.rootIdentity() == FileIdentity{root.status.device, root.status.inode} && root.isStillThere();
    if (accounting.rootError() == 0 && !isTheSame) return PlanError::of(PlanError::Kind::rootChanged);
    if (accounting.rootError() != 0) {
        return PlanError::of(root.isStillThere() ? PlanError::Kind::rootUnreadable : PlanError::Kind::rootChanged);
    }
    plan.roots.push_back(root.root);
    return std::nullopt;
}

bool PartCollector::admits(const OpenedRoot& root, std::string_view name, std::uint64_t fileID, EntryType type) const {
    if (root.root.screenshotFolder && (type != EntryType::file || !isScreenshotName(name))) return false;
    if (!names.passes(name) || (preset && preset->keeps(name, type))) return false;
    if (rule.filter.pinnedFiles.empty()) return true;
    return type == EntryType::file && rule.filter.pinsAllow(name, fileID, root.root.identity.volumeUUID);
}

bool PartCollector::recognises(const OpenedRoot& root, std::string_view name) const {
    return (!preset || preset->recognises(name)) && (!root.root.screenshotFolder || isScreenshotName(name));
}

void PartCollector::showProgress(const WalkedFolder& folder, const TreeFacts& sum) {
    soFar.folder = folder.path;
    soFar.files += sum.fileCount;
    soFar.bytes += sum.bytes;
    planner.progress->set(soFar);
}

}  // namespace

std::expected<CleanupPlan, PlanError> CleanupPlanner::plan(const Rule& rule, Date now,
                                                           const std::function<bool()>& isCancelled) const {
    bool wasCancelled = false;
    WalkBudget budget;
    budget.clock = clock;
    budget.isCancelled = [&] {
        wasCancelled = wasCancelled || (isCancelled && isCancelled());
        return wasCancelled;
    };
    auto names = RuleFilter::CompiledGlobs::compile(rule.filter);
    if (!names) return std::unexpected(PlanError{PlanError::Kind::filterNotAllowed, names.error()});
    auto exclusions = Glob::Patterns::compile(rule.filter.excludeGlobs);
    if (!exclusions) return std::unexpected(PlanError{PlanError::Kind::filterNotAllowed, exclusions.error()});
    std::optional<PresetItems> presetItems;
    if (const Preset* preset = catalog.presetOf(rule.target)) {
        auto items = PresetItems::of(*preset, guards.home());
        if (!items) return std::unexpected(PlanError{PlanError::Kind::filterNotAllowed, items.error()});
        presetItems = *std::move(items);
    }
    const auto roots = RootOpening(guards, resolver, volume).open(rule, catalog, budget.isCancelled);
    if (!roots) return std::unexpected(roots.error());

    budget.deadline = clock() + timeLimit;
    CleanupPlan plan;
    plan.ruleID = rule.id;
    plan.terms = {rule.target, rule.filter, rule.action};
    plan.createdAt = now;
    if (const auto* scan = std::get_if<ProjectScanTarget>(&rule.target)) {
        auto error = ProjectCollector(*this, rule, *scan, now, budget.isCancelled, plan).collect(*roots);
        if (wasCancelled) return std::unexpected(PlanError::of(PlanError::Kind::cancelled));
        if (error) return std::unexpected(*std::move(error));
        return plan;
    }
    PartCollector collector(*this, rule, now, budget, *std::move(names), *std::move(exclusions), std::move(presetItems),
                            plan);
    for (const auto& root : *roots) {
        if (budget.isCancelled()) return std::unexpected(PlanError::of(PlanError::Kind::cancelled));
        auto error = collector.collect(root);
        if (wasCancelled) return std::unexpected(PlanError::of(PlanError::Kind::cancelled));
        if (error) return std::unexpected(*std::move(error));
    }
    return plan;
}

std::expected<std::set<RootIdentity>, PlanError> CleanupPlanner::currentRoots(const Rule& rule) const {
    const auto roots = RootOpening(guards, resolver, volume).open(rule, catalog);
    if (!roots) return std::unexpected(roots.error());
    std::set<RootIdentity> identities;
    for (const auto& root : *roots)
        identities.insert(root.root.identity);
    return identities;
}

bool CleanupPlanner::approvalIsStale(const Rule& rule) const {
    if (!rule.approval) return true;
    const auto roots = currentRoots(rule);
    return !roots || rule.approval->roots != *roots;
}

}  // namespace vostrel
