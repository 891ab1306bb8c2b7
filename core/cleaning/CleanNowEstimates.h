#pragma once

#include <expected>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "base/Uuid.h"
#include "cleaning/PlanError.h"
#include "rules/CleanupPlan.h"
#include "rules/PresetCatalog.h"
#include "rules/Rule.h"

namespace vostrel {

/// The rule would free up to this much: "up to 1.5 GB".
struct EstimateUpTo {
    std::string amount;
    friend bool operator==(const EstimateUpTo&, const EstimateUpTo&) = default;
};

/// The rule is not run, and why.
struct EstimateNotIncluded {
    std::string reason;
    friend bool operator==(const EstimateNotIncluded&, const EstimateNotIncluded&) = default;
};

/// The rule matches nothing now.
struct EstimateNothing {
    friend bool operator==(const EstimateNothing&, const EstimateNothing&) = default;
};

/// The rule runs only from a preview.
struct EstimatePreviewOnly {
    static constexpr const char* sentence =
        "This disk does not record when files arrive, so a file copied here a minute ago can look old. Vostrel runs "
        "this rule only from a preview you have just checked. Scheduled runs and Clean Now skip it.";
    friend bool operator==(const EstimatePreviewOnly&, const EstimatePreviewOnly&) = default;
};

/// What cleaning now would do with one rule.
using CleanNowEstimate = std::variant<EstimateUpTo, EstimateNotIncluded, EstimateNothing, EstimatePreviewOnly>;

/// What the user reads of it.
[[nodiscard]] std::string sentenceOf(const CleanNowEstimate& estimate);

/// What cleaning now would free, rule by rule, as previews tell it: shown before the user agrees. A value.
struct CleanNowEstimates {
    std::map<Uuid, CleanNowEstimate> entries;

    using Plan = std::expected<CleanupPlan, PlanError>;

    /// Estimates one rule. `plan` is asked for only when the rule is on and approved; a cancelled one estimates
    /// nothing.
    void add(const Rule& rule, const PresetCatalog& catalog, const std::function<Plan()>& plan);

    [[nodiscard]] bool allEstimated(std::span<const Rule> rules) const;
    /// Those of the rules that cleaning now would run, in their order: those that would free something.
    [[nodiscard]] std::vector<Rule> runnable(std::span<const Rule> rules) const;
};

}  // namespace vostrel
