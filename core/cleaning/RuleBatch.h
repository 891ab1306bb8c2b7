#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cleaning/BatchControl.h"
#include "cleaning/CleanLog.h"
#include "cleaning/CleanupRunner.h"
#include "cleaning/LiveRules.h"
#include "cleaning/RunSummary.h"
#include "cleaning/ThresholdSession.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel {

/// Runs several rules, one after another, as one piece of work.
///
/// Every rule of a batch gets a report, also one whose turn came after the batch was cancelled; only a cleanup for low
/// space leaves out the rules that it does not come to. The log is pruned at the end. Works on the caller's thread;
/// what it refers to outlives it.
struct RuleBatch {
    const CleanupRunner& runner;
    const LiveRules& live;
    const CleanLog& log;
    ThresholdSession session;
    /// Hears of each item before it is looked at; may be empty.
    std::function<void(const Rule&, const PlannedItem&)> progress = {};

    /// A preview that the user saw and asked for.
    struct Previewed {
        Rule rule;
        CleanupPlan plan;
    };
    /// All these rules, because the user said so.
    struct CleanNow {
        std::vector<Rule> rules;
    };
    /// The rules of an application that quit.
    struct AppQuit {
        std::vector<Rule> rules;
    };
    /// What one evaluation of the clock and of free space starts.
    struct Unattended {
        std::vector<Rule> scheduled;
        std::optional<ThresholdRequest> session;
        /// Those that a cleanup for low space may choose from.
        std::vector<Rule> rules;
    };
    /// Items chosen on the space map, or among large, old and duplicate files.
    struct SpaceTrash {
        CleanupPlan plan;
    };
    struct FinderTrash {
        CleanupPlan plan;
        CleanupRunner::ItemGate gate = {};
    };
    using Work = std::variant<Previewed, CleanNow, AppQuit, Unattended, SpaceTrash, FinderTrash>;

    struct Result {
        /// Of all runs but those of `session`.
        std::vector<RunReport> reports;
        std::optional<ThresholdSession::Outcome> session;

        /// In the order of the runs.
        [[nodiscard]] std::vector<RunReport> allReports() const;
    };

    [[nodiscard]] Result run(const Work& work, BatchControl& control) const;

    struct UnattendedFinish {
        /// Nothing when there is nothing to tell.
        std::optional<RunSummary> summary;
        bool endedBelowLine = false;
    };
    /// What to tell the user after a batch that nobody watched. `topGrowth` is a sentence about what grew most.
    [[nodiscard]] static UnattendedFinish finishUnattended(const Result& result,
                                                           const std::optional<ThresholdRequest>& request,
                                                           const std::optional<std::string>& topGrowth = {});
};

}  // namespace vostrel
