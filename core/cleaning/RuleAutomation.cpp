#include "cleaning/RuleAutomation.h"

#include <algorithm>
#include <cmath>

namespace vostrel {

namespace {

using Dispatch = TriggerEvaluator::ScheduledDispatch;

/// Whether a rule that is skipped so is tried again.
bool staysDue(RunSkipReason reason) {
    return reason == RunSkipReason::appRunning || reason == RunSkipReason::anotherRunActive;
}

std::optional<RunSkipReason> reasonToSkip(const Rule& rule, bool isPaused, const CleanupRunner& runner) {
    if (isPaused) return RunSkipReason::paused;
    if (runner.waits(rule)) return RunSkipReason::appRunning;
    if (runner.lock.isHeld()) return RunSkipReason::anotherRunActive;
    return std::nullopt;
}

void use(const Dispatch& dispatch, Date now, ScheduleState& schedule) {
    for (const auto& each : dispatch.due)
        schedule.setCountsFrom(now, dispatch.rule.id, each.trigger);
}

/// Unless the rule was edited meanwhile, which made its triggers count from then.
void giveBack(const Dispatch& dispatch, Date usedAt, ScheduleState& schedule) {
    for (const auto& each : dispatch.due) {
        if (schedule.countsFrom(dispatch.rule.id, each.trigger) == usedAt)
            schedule.setCountsFrom(each.occurrence - Duration(1), dispatch.rule.id, each.trigger);
    }
}

/// Whether the log was told that the rule waits with this occurrence; from now on it counts as told.
bool isKnownToWait(const Dispatch& dispatch, const CleanLog& log, std::map<Uuid, Date>& waiting) {
    Date& told = waiting.try_emplace(dispatch.rule.id, Date::distantPast()).first->second;
    if (told == dispatch.occurrence) return true;
    told = dispatch.occurrence;
    // A program that ran before this one may have told it, or the run itself.
    return std::ranges::any_of(log.reports(dispatch.occurrence), [&](const RunReport& report) {
        return report.ruleID == dispatch.rule.id && report.trigger == RunTrigger::schedule && report.skipReason &&
               staysDue(*report.skipReason);
    });
}

/// What was stopped, or met nothing but rules that wait, says nothing of what another session could free.
bool hasDoneAllItCould(const ThresholdSession::Outcome& session) {
    const auto waited = [](const RunReport& report) { return report.skipReason && staysDue(*report.skipReason); };
    return !session.interrupted && (session.reports.empty() || !std::ranges::all_of(session.reports, waited));
}

}  // namespace

AutomationDecision RuleAutomation::decide(const Situation& situation, const CleanupRunner& runner, RuleBook& book) {
    const Date now = situation.now;
    const bool isPaused = !situation.settings || situation.settings->automaticCleaningPaused;
    AutomationDecision decision;
    decision.decidedAt = now;
    TriggerEvaluator::catchUpWithTheClock(book.rules, now, book.schedule);
    for (Dispatch& dispatch : evaluator.due(book.rules, now, book.schedule)) {
        const auto reason = reasonToSkip(dispatch.rule, isPaused, runner);
        if (!reason || !staysDue(*reason)) use(dispatch, now, book.schedule);
        if (!reason) {
            decision.scheduled.push_back(std::move(dispatch));
        } else if (!staysDue(*reason) || !isKnownToWait(dispatch, runner.log, waiting)) {
            decision.skips.push_back(RunReport::skipped(dispatch.rule, RunTrigger::schedule, *reason, now));
        }
    }
    ThresholdGate::Reading reading{.hysteresis = hysteresisBytes(situation.settings.value_or(AppSettings())),
                                   .isPaused = isPaused};
    if (situation.reading) {
        reading.free = situation.reading->capacity.displayedFree();
        reading.line = situation.reading->lineBytes;
    }
    const auto isStarted = [&](const Rule& rule) {
        return ThresholdSession::isStartedBy(rule, runner.planner.catalog);
    };
    decision.startThreshold = gate.shouldStart(reading, now, book.schedule) &&
                              std::ranges::any_of(book.rules, isStarted) && !runner.lock.isHeld();
    // Used up before it begins, like an occurrence of a rule.
    if (decision.startThreshold) book.schedule.lastThresholdSession = now;
    return decision;
}

void RuleAutomation::finish(const AutomationDecision& decision, const RuleBatch::Result& result,
                            const std::optional<ThresholdRequest>& request, Date now, RuleBook& book) {
    recordRuns(result.allReports(), book);
    for (const Dispatch& dispatch : decision.scheduled) {
        const bool isStillDue = std::ranges::any_of(result.reports, [&](const RunReport& report) {
            return report.ruleID == dispatch.rule.id && report.skipReason && staysDue(*report.skipReason);
        });
        if (isStillDue) giveBack(dispatch, decision.decidedAt, book.schedule);
    }
    if (result.session && request) {
        const auto freeAfter = hasDoneAllItCould(*result.session) ? result.session->freeAfter : std::nullopt;
        ThresholdGate::finish(decision.decidedAt, freeAfter, request->line, now, book.schedule);
    }
}

void RuleAutomation::recordRuns(std::span<const RunReport> reports, RuleBook& book) {
    for (const RunReport& report : reports) {
        if (report.status != RunStatus::skipped && book.rule(report.ruleID))
            book.schedule.setLastRun(report.startedAt, report.ruleID);
    }
}

std::int64_t RuleAutomation::hysteresisBytes(const AppSettings& settings) {
    constexpr double bytesPerGigabyte = 1e9;
    return std::llround(clampedHysteresis(settings.hysteresisGigabytes) * bytesPerGigabyte);
}

}  // namespace vostrel
