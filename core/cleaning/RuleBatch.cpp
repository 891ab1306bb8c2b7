#include "cleaning/RuleBatch.h"

#include <span>
#include <tuple>

#include "base/Visit.h"

namespace vostrel {

namespace {

/// A batch at work.
class Runs {
public:
    Runs(const RuleBatch& of, BatchControl& by) : batch(of), control(by) {}

    RuleBatch::Result of(const RuleBatch::Work& work) {
        visit(
            work,
            [&](const RuleBatch::Previewed& seen) {
                add(batch.runner.run(seen.rule, seen.plan, presentOf(seen.rule), controlOf(seen.rule.id)));
            },
            [&](const RuleBatch::CleanNow& all) { run(all.rules, RunTrigger::cleanNow); },
            [&](const RuleBatch::AppQuit& quit) { run(quit.rules, RunTrigger::appQuit); },
            [&](const RuleBatch::Unattended& due) { run(due); },
            [&](const RuleBatch::SpaceTrash& chosen) {
                add(batch.runner.runSpaceTrash(chosen.plan, controlOf(chosen.plan.ruleID)));
            },
            [&](const RuleBatch::FinderTrash& chosen) {
                add(batch.runner.runFinderTrash(chosen.plan, chosen.gate, controlOf(chosen.plan.ruleID)));
            });
        return std::move(result);
    }

private:
    void run(std::span<const Rule> rules, RunTrigger trigger) {
        for (const Rule& rule : rules)
            add(batch.runner.run(rule, trigger, presentOf(rule), controlOf(rule.id)));
    }

    void run(const RuleBatch::Unattended& due) {
        run(due.scheduled, RunTrigger::schedule);
        if (!due.session) return;
        result.session =
            batch.session.run(*due.session, due.rules, [this](const Rule& rule) { return presentOf(rule); }, control);
    }

    [[nodiscard]] const RunControl& controlOf(const Uuid& rule) { return *control.control(rule); }

    [[nodiscard]] CleanupRunner::Present presentOf(const Rule& rule) const {
        CleanupRunner::Present present;
        present.isPaused = [this] { return batch.live.isPaused(); };
        present.currentRule = [this, id = rule.id] { return batch.live.rule(id); };
        if (batch.progress) {
            present.progress = [this, rule](const PlannedItem& item) { batch.progress(rule, item); };
        }
        return present;
    }

    void add(RunReport&& report) { result.reports.push_back(std::move(report)); }

    const RuleBatch& batch;
    BatchControl& control;
    RuleBatch::Result result;
};

}  // namespace

std::vector<RunReport> RuleBatch::Result::allReports() const {
    std::vector<RunReport> all = reports;
    if (session) all.insert(all.end(), session->reports.begin(), session->reports.end());
    return all;
}

RuleBatch::Result RuleBatch::run(const Work& work, BatchControl& control) const {
    auto result = Runs(*this, control).of(work);
    std::ignore = log.prune(runner.clock());
    return result;
}

RuleBatch::UnattendedFinish RuleBatch::finishUnattended(const Result& result,
                                                        const std::optional<ThresholdRequest>& request,
                                                        const std::optional<std::string>& topGrowth) {
    UnattendedFinish finish;
    finish.endedBelowLine = result.session && request && isBelow(result.session->freeAfter, request->line);
    const auto stillBelow = finish.endedBelowLine ? result.session->freeAfter : std::nullopt;
    finish.summary = RunSummary::make(result.allReports(), stillBelow, topGrowth);
    return finish;
}

}  // namespace vostrel
