#include "cleaning/CleanupRunner.h"

#include <algorithm>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "cleaning/ApprovedFolders.h"
#include "cleaning/RunSentences.h"
#include "rules/RuleSentences.h"
#include "rules/TargetResolver.h"

namespace vostrel {

namespace {

/// Why a rule is not run.
struct Skip {
    RunSkipReason reason = RunSkipReason::unknown;
    std::optional<std::string> message = std::nullopt;
};
using Check = std::optional<Skip>;

/// One run of one rule.
class Run {
public:
    Run(const CleanupRunner& with, const Rule& ofRule, RunTrigger startedBy, CleanupRunner::Present asked,
        const RunControl& ofControl)
        : runner(with), rule(ofRule), trigger(startedBy), present(std::move(asked)), control(ofControl) {}

    [[nodiscard]] RunReport withNewPlan() const {
        for (const auto check :
             {&Run::checkEnabled, &Run::checkPaused, &Run::checkApproved, &Run::checkApps, &Run::checkFolders}) {
            if (const Check skip = (this->*check)()) return skipped(*skip);
        }
        const auto plan = runner.planner.plan(rule, runner.clock(), [this] { return control.isCancelled(); });
        if (!plan) return skipped(skipFor(plan.error()));
        if (plan->limitedDates) return skipped({RunSkipReason::rootProblem, sentences::limitedDatesNeedPreview});
        if (plan->items.empty()) return skipped({RunSkipReason::nothingToClean});
        if (const Check skip = checkApprovedRoots(*plan)) return skipped(*skip);
        return underLock(*plan, {});
    }

    [[nodiscard]] RunReport withPreview(const CleanupPlan& plan) const {
        if (const Check skip = checkEnabled()) return skipped(*skip);
        if (const Check skip = checkPreview(plan)) return skipped(*skip);
        const bool isUnchanged = plan.terms == PlanTerms{rule.target, rule.filter, rule.action} && !whatChanged();
        if (!isUnchanged) return skipped({RunSkipReason::previewOutdated});
        if (plan.items.empty()) return skipped({RunSkipReason::nothingToClean});
        return underLock(plan, {});
    }

    [[nodiscard]] RunReport withChosenItems(const CleanupPlan& plan, const CleanupRunner::ItemGate& gate) const {
        if (const Check skip = checkPreview(plan)) return skipped(*skip);
        if (plan.items.empty()) return skipped({RunSkipReason::nothingToClean});
        return underLock(plan, gate);
    }

private:
    [[nodiscard]] Check checkEnabled() const {
        if (rule.enabled) return std::nullopt;
        return Skip{RunSkipReason::disabled};
    }

    [[nodiscard]] Check checkPaused() const {
        if (!isUnattended(trigger) || !present.isPaused()) return std::nullopt;
        return Skip{RunSkipReason::paused};
    }

    /// That the folders are still the approved ones shows once they are open.
    [[nodiscard]] Check checkApproved() const {
        if (!needsApproval(trigger)) return std::nullopt;
        if (rule.approvalHolds(runner.planner.catalog) && isPermitted(trigger, *rule.approval)) return std::nullopt;
        return Skip{RunSkipReason::notApproved};
    }

    [[nodiscard]] Check checkApps() const {
        if (!isUnattended(trigger) || !runner.waits(rule)) return std::nullopt;
        return Skip{RunSkipReason::appRunning};
    }

    /// Planning opens the folders, which makes some systems ask the user: nobody is there.
    [[nodiscard]] Check checkFolders() const {
        if (!isUnattended(trigger)) return std::nullopt;
        const auto resolved = runner.planner.resolver.resolve(rule.target, runner.planner.catalog);
        if (!resolved) return std::nullopt;  // which planning tells
        const bool isBlocked = std::ranges::any_of(*resolved, [&](const ResolvedRoot& root) {
            return std::holds_alternative<UnattendedLookup::Blocked>(runner.lookup.look(root.url));
        });
        if (!isBlocked) return std::nullopt;
        return Skip{RunSkipReason::rootProblem, sentences::folderUnreadable};
    }

    [[nodiscard]] Check checkPreview(const CleanupPlan& plan) const {
        const Date now = runner.clock();
        if (plan.ruleID != rule.id) return Skip{RunSkipReason::previewOutdated, sentences::previewOfAnotherRule};
        if (plan.createdAt > now) return Skip{RunSkipReason::previewExpired, sentences::previewAhead};
        if (now - plan.createdAt > CleanupRunner::previewLifetime) return Skip{RunSkipReason::previewExpired};
        return std::nullopt;
    }

    [[nodiscard]] Check checkApprovedRoots(const CleanupPlan& plan) const {
        if (!needsApproval(trigger)) return std::nullopt;
        if (const auto problem = approvedFoldersProblem(rule, plan)) return Skip{RunSkipReason::rootProblem, *problem};
        return std::nullopt;
    }

    [[nodiscard]] static Skip skipFor(const PlanError& error) {
        if (error.kind == PlanError::Kind::cancelled) return {RunSkipReason::stopped};
        return {RunSkipReason::rootProblem, error.sentence};
    }

    [[nodiscard]] RunReport underLock(const CleanupPlan& plan, const CleanupRunner::ItemGate& gate) const {
        const Uuid id = Uuid::random();
        const auto result = runner.lock.withLock(id, [&] { return carryOut(id, plan, gate); });
        if (result) return *result;
        if (result.error().isHeld()) return skipped({RunSkipReason::anotherRunActive});
        const std::string why = std::generic_category().message(result.error().unavailable);
        return skipped({RunSkipReason::lockUnavailable, "Vostrel could not open its run lock (" + why + ")"});
    }

    [[nodiscard]] RunReport carryOut(const Uuid& id, const CleanupPlan& plan,
                                     const CleanupRunner::ItemGate& gate) const {
        const auto started = RunReport::started(id, rule, plan, trigger, runner.clock());
        if (runner.log.appendStarted(started) == CleanLog::StartedRecord::notWritten)
            return skipped({RunSkipReason::logUnavailable});

        const auto freeBefore = freeSpace(plan);
        CleanupExecutor::Order order;
        order.action = rule.action;
        order.filter = rule.filter;
        order.pauseWhileRunning = rule.pauseWhileRunning;
        order.liveCheck = [this] { return whatChanged(); };
        order.itemGate = gate;
        order.progress = present.progress;
        auto result = runner.executor.execute(plan, order, control);

        std::vector<std::string> messages;
        const auto freed = spaceGained(plan, freeBefore, messages);
        if (result.stop) messages.push_back(result.stop->sentence());
        auto report = started.finished(runner.clock(), std::move(result.outcomes),
                                       result.stop ? RunReport::Ending::stopped : RunReport::Ending::finished, freed,
                                       std::move(messages));
        if (!runner.log.append(report)) report.messages.emplace_back(sentences::logNotWritten);
        return report;
    }

    /// Whether the rule is no longer what this run was begun for, or the run may not go on by itself.
    [[nodiscard]] std::optional<StopReason> whatChanged() const {
        if (!present.currentRule) return std::nullopt;
        const auto now = present.currentRule();
        const bool isTheSame = now && now->enabled == rule.enabled && now->target == rule.target &&
                               now->filter == rule.filter && now->action == rule.action &&
                               now->pauseWhileRunning == rule.pauseWhileRunning &&
                               (!needsApproval(trigger) || isStillApproved(*now));
        if (!isTheSame) return StopReason{StopReason::Kind::ruleChanged};
        if (isUnattended(trigger) && present.isPaused()) return StopReason{StopReason::Kind::paused};
        return std::nullopt;
    }

    /// An edit of its triggers withdraws an approval, and leaves it where it is stored.
    [[nodiscard]] bool isStillApproved(const Rule& now) const {
        return now.approval == rule.approval && now.approvalHolds(runner.planner.catalog) &&
               isPermitted(trigger, *now.approval);
    }

    [[nodiscard]] static bool isOnOneDisk(const CleanupPlan& plan) {
        return std::ranges::all_of(plan.roots, [&](const PlanRoot& root) {
            return root.identity.volumeUUID == plan.roots.front().identity.volumeUUID;
        });
    }

    [[nodiscard]] std::optional<std::int64_t> freeSpace(const CleanupPlan& plan) const {
        if (plan.roots.empty() || !isOnOneDisk(plan)) return std::nullopt;
        const auto capacity = runner.reader.read(plan.roots.front().url, ImportantFigure::leftOut);
        return capacity ? std::optional(capacity->availableNow) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::int64_t> spaceGained(const CleanupPlan& plan, std::optional<std::int64_t> before,
                                                          std::vector<std::string>& messages) const {
        if (!isOnOneDisk(plan)) {
            messages.emplace_back(sentences::severalDisks);
            return std::nullopt;
        }
        const auto after = freeSpace(plan);
        if (before && after) return *after - *before;
        messages.emplace_back(sentences::freeSpaceUnknown);
        return std::nullopt;
    }

    [[nodiscard]] RunReport skipped(const Skip& skip) const {
        const auto report = RunReport::skipped(rule, trigger, skip.reason, runner.clock(), skip.message);
        std::ignore = runner.log.append(report);  // the log says itself what it could not write
        return report;
    }

    const CleanupRunner& runner;
    const Rule& rule;
    RunTrigger trigger;
    CleanupRunner::Present present;
    const RunControl& control;
};

/// What a run of chosen items goes by in place of a rule.
Rule ruleOf(const CleanupPlan& plan, std::string_view name) {
    Rule rule;
    rule.id = plan.ruleID;
    rule.name = name;
    rule.target = plan.terms.target;
    rule.filter = plan.terms.filter;
    rule.action = CleanupAction::trash;
    return rule;
}

}  // namespace

bool CleanupRunner::waits(const Rule& rule) const {
    if (rule.pauseWhileRunning.empty()) return false;
    const auto running = runningApps.runningIdentifiers();
    if (!running) return true;
    return std::ranges::any_of(rule.pauseWhileRunning, [&](const std::string& app) { return running->contains(app); });
}

RunReport CleanupRunner::run(const Rule& rule, RunTrigger trigger, const Present& present,
                             const RunControl& control) const {
    return Run(*this, rule, trigger, present, control).withNewPlan();
}

RunReport CleanupRunner::run(const Rule& rule, const CleanupPlan& plan, const Present& present,
                             const RunControl& control) const {
    return Run(*this, rule, RunTrigger::manual, present, control).withPreview(plan);
}

RunReport CleanupRunner::runFinderTrash(const CleanupPlan& plan, const ItemGate& itemGate,
                                        const RunControl& control) const {
    const Rule rule = ruleOf(plan, "Chosen large, old and duplicate files");
    return Run(*this, rule, RunTrigger::manual, {}, control).withChosenItems(plan, itemGate);
}

RunReport CleanupRunner::runSpaceTrash(const CleanupPlan& plan, const RunControl& control) const {
    const Rule rule = ruleOf(plan, "Items chosen on the space map");
    return Run(*this, rule, RunTrigger::manual, {}, control).withChosenItems(plan, {});
}

}  // namespace vostrel
