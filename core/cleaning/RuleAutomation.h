#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "cleaning/CleanupRunner.h"
#include "cleaning/RuleBatch.h"
#include "cleaning/ThresholdGate.h"
#include "cleaning/TriggerEvaluator.h"
#include "monitor/AppSettings.h"
#include "monitor/SpaceMonitor.h"
#include "rules/RuleBook.h"

namespace vostrel {

/// What one evaluation starts.
struct AutomationDecision {
    /// The rules to run now by the clock.
    std::vector<TriggerEvaluator::ScheduledDispatch> scheduled;
    /// For the log: rules that are due and are not run.
    std::vector<RunReport> skips;
    /// Clean for low space.
    bool startThreshold = false;
    Date decidedAt;
};

/// Decides, at every reading of free space, what runs without the user, and keeps the book of it in the rule book's
/// schedule. A value that one thread owns; it starts nothing itself.
///
/// An occurrence is used up by being decided on, whether its rule then runs or is skipped, so that a crash in the midst
/// of a run does not begin it anew. Only while an application that the rule waits for is open, or another clean holds
/// the run lock, the rule stays due; the log is told of that once.
struct RuleAutomation {
    TriggerEvaluator evaluator = {};
    ThresholdGate gate = {};
    /// The occurrences that rules wait with, as the log was told.
    std::map<Uuid, Date> waiting = {};

    struct Situation {
        /// The settings for what runs without the user; nothing while they are untrusted, which pauses everything.
        std::optional<AppSettings> settings;
        /// Nothing when free space could not be read.
        std::optional<MonitorReading> reading;
        Date now;
    };

    /// Decides, and notes in the book's schedule what is used up; that is to be saved before anything is begun. Of the
    /// runner only its log, its lock and what applications run are asked.
    [[nodiscard]] AutomationDecision decide(const Situation& situation, const CleanupRunner& runner, RuleBook& book);

    /// Notes in the book, as it is now, what became of the decision, which a batch has carried out: when rules ran,
    /// which are still due after all, and how a cleanup for low space ended. `request` is that of the cleanup.
    static void finish(const AutomationDecision& decision, const RuleBatch::Result& result,
                       const std::optional<ThresholdRequest>& request, Date now, RuleBook& book);

    /// Notes when rules of the book ran, whatever started them.
    static void recordRuns(std::span<const RunReport> reports, RuleBook& book);

    /// The user's hysteresis, in bytes.
    [[nodiscard]] static std::int64_t hysteresisBytes(const AppSettings& settings);
};

}  // namespace vostrel
