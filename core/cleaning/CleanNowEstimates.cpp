#include "cleaning/CleanNowEstimates.h"

#include <algorithm>
#include <optional>

#include "base/SpaceFormat.h"
#include "base/Visit.h"
#include "cleaning/ApprovedFolders.h"
#include "cleaning/RunSkipReason.h"

namespace vostrel {

namespace {

std::optional<CleanNowEstimate> estimateOf(const Rule& rule, const PresetCatalog& catalog,
                                           const std::function<CleanNowEstimates::Plan()>& makePlan) {
    if (!rule.enabled) return EstimateNotIncluded{logLine(RunSkipReason::disabled)};
    if (!rule.approvalHolds(catalog)) return EstimateNotIncluded{logLine(RunSkipReason::notApproved)};
    const auto plan = makePlan();
    if (!plan && plan.error().kind == PlanError::Kind::cancelled) return std::nullopt;
    if (!plan) return EstimateNotIncluded{plan.error().sentence};
    if (plan->limitedDates) return EstimatePreviewOnly{};
    if (const auto problem = approvedFoldersProblem(rule, *plan)) return EstimateNotIncluded{*problem};
    if (plan->items.empty()) return EstimateNothing{};
    return EstimateUpTo{SpaceFormat::upTo(plan->totalBytes())};
}

}  // namespace

std::string sentenceOf(const CleanNowEstimate& estimate) {
    return visit(
        estimate, [](const EstimateUpTo& bytes) { return bytes.amount; },
        [](const EstimateNotIncluded& left) { return left.reason; },
        [](const EstimateNothing&) { return std::string(logLine(RunSkipReason::nothingToClean)); },
        [](const EstimatePreviewOnly&) { return std::string(EstimatePreviewOnly::sentence); });
}

void CleanNowEstimates::add(const Rule& rule, const PresetCatalog& catalog, const std::function<Plan()>& plan) {
    if (auto estimate = estimateOf(rule, catalog, plan)) entries.insert_or_assign(rule.id, *std::move(estimate));
}

bool CleanNowEstimates::allEstimated(std::span<const Rule> rules) const {
    return std::ranges::all_of(rules, [this](const Rule& rule) { return entries.contains(rule.id); });
}

std::vector<Rule> CleanNowEstimates::runnable(std::span<const Rule> rules) const {
    std::vector<Rule> freeing;
    std::ranges::copy_if(rules, std::back_inserter(freeing), [this](const Rule& rule) {
        const auto found = entries.find(rule.id);
        return found != entries.end() && std::holds_alternative<EstimateUpTo>(found->second);
    });
    return freeing;
}

}  // namespace vostrel
