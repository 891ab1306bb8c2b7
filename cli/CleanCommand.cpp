#include <fmt/format.h>

#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "base/Checked.h"
#include "base/ProgressBox.h"
#include "base/SpaceFormat.h"
#include "cleaning/CleanNowEstimates.h"
#include "cleaning/RuleAutomation.h"
#include "cleaning/RunFields.h"
#include "cli/Agreement.h"
#include "cli/Cleaning.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/ProgressLine.h"
#include "cli/RulePreview.h"
#include "cli/RunDisplay.h"
#include "cli/Session.h"

namespace vostrel::cli {

namespace {

using Style = Output::Style;

struct CleanOptions {
    std::string rule;
    bool isSure = false;

    [[nodiscard]] Consent consent() const { return isSure ? Consent::given : Consent::asked; }
};

/// How far a run is: the item in hand, and the sizes of those before it.
struct CleanProgress {
    std::int64_t item = 0;
    std::int64_t bytesBefore = 0;
    std::int64_t bytes = 0;
    std::string path;
};

/// Runs with a progress line that names the item in hand, and notes in the rule book when the rule ran.
RunReport carriedOut(Session& session, const GlobalOptions& options, const Rule& rule,
                     const std::function<RunReport(const CleanupRunner::Present&, const RunControl&)>& run,
                     const Cleaning& cleaning) {
    const auto progress = std::make_shared<ProgressBox<CleanProgress>>();
    CleanupRunner::Present present = cleaning.presentOf(rule);
    present.progress = [progress](const PlannedItem& item) {
        const auto before = progress->read();
        progress->set(
            {before.item + 1, saturatingAdd(before.bytesBefore, before.bytes), item.bytes, item.url.native()});
    };
    const RunControl control(&Interrupt::requested);
    const ProgressLine line(options, [&session, progress] {
        const auto now = progress->read();
        if (now.item == 0) return std::string("Looking at the rule's folders");
        return fmt::format("Item {}, {} before it, {} in it  {}", grouped(now.item),
                           SpaceFormat::bytes(now.bytesBefore), SpaceFormat::bytes(now.bytes),
                           session.guards.displayPath(now.path));
    });
    RunReport report = run(present, control);
    // That it could not be noted when the rule ran changes nothing of the run.
    if (report.status != RunStatus::skipped) {
        std::ignore = session.rules.change([&](RuleBook& book) -> CommandResult {
            RuleAutomation::recordRuns({&report, 1}, book);
            return {};
        });
    }
    return report;
}

CommandResult ended(Session& session, const RunReport& report) {
    if (report.status != RunStatus::skipped) showRun(session.output, session.guards, report);
    if (auto shown = session.output.document(encodeJSON(report)); !shown) return shown;
    if (!isShort(report)) return {};
    Failure failure;
    failure.document = Failure::Document::written;
    failure.sentences.push_back(shortfall(report));
    return std::unexpected(std::move(failure));
}

CommandResult clean(Session& session, const GlobalOptions& options, const CleanOptions& wanted) {
    const auto shown = previewRule(session, options, wanted.rule);
    if (!shown) return std::unexpected(shown.error());
    const auto& [rule, plan] = *shown;
    const auto items = static_cast<std::int64_t>(plan.items.size());
    if (rule.enabled && items > 0) {
        session.output.line();
        if (auto agreed = agree(session, wanted.consent(), questionFor(rule.action, items)); !agreed) return agreed;
    }
    const Cleaning cleaning(session);
    const RunReport report = carriedOut(
        session, options, rule,
        [&](const CleanupRunner::Present& present, const RunControl& control) {
            return cleaning.runner.run(shown->rule, shown->plan, present, control);
        },
        cleaning);
    std::ignore = session.log.prune(session.clock());
    session.output.line();
    return ended(session, report);
}

/// The estimate of one rule, and where what it takes would go.
std::string estimateText(const CleanNowEstimate& estimate, CleanupAction action) {
    const bool takes = std::holds_alternative<EstimateUpTo>(estimate);
    const char* const whereTo = action == CleanupAction::trash ? ", to the Trash" : ", deleted for good";
    return sentenceOf(estimate) + (takes ? whereTo : "");
}

/// Works out and shows what each of the rules would free now.
std::expected<CleanNowEstimates, Failure> estimated(Session& session, const GlobalOptions& options,
                                                    const std::vector<Rule>& rules) {
    CleanNowEstimates estimates;
    std::vector<Output::Row> rows;
    for (const Rule& rule : rules) {
        estimates.add(rule, session.catalog, [&] { return planWithProgress(session, options, rule); });
        if (Interrupt::requested() || !estimates.allEstimated({&rule, 1})) return failed(Interrupt::sentence);
        rows.push_back({rule.name, estimateText(estimates.entries.at(rule.id), rule.action)});
    }
    session.output.table(rows, {Output::Alignment::left, Output::Alignment::left});
    session.output.line();
    return estimates;
}

CommandResult cleanNow(Session& session, const GlobalOptions& options, const CleanOptions& wanted) {
    auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    std::vector<Rule> approved = book->rules;
    std::erase_if(approved, [&](const Rule& rule) { return !rule.enabled || !rule.approvalHolds(session.catalog); });
    if (approved.empty()) return failed("No rule is approved. Preview a rule and approve it first.");
    const auto estimates = estimated(session, options, approved);
    if (!estimates) return std::unexpected(estimates.error());
    const std::vector<Rule> rules = estimates->runnable(approved);
    if (!rules.empty()) {
        const auto count = static_cast<std::int64_t>(rules.size());
        if (auto agreed = agree(session, wanted.consent(), fmt::format("Run {}?", counted(count, "rule", "rules")));
            !agreed)
            return agreed;
    }

    const Cleaning cleaning(session);
    JSONArray documents;
    Failure failure;
    failure.document = Failure::Document::written;
    for (const Rule& rule : approved) {
        const auto* const left = std::get_if<EstimateNotIncluded>(&estimates->entries.at(rule.id));
        if (left) failure.sentences.push_back(rule.name + ": " + left->reason);
    }
    for (const Rule& rule : rules) {
        if (Interrupt::requested()) failure.sentences.emplace_back(Interrupt::sentence);
        if (Interrupt::requested()) break;
        const RunReport report = carriedOut(
            session, options, rule,
            [&](const CleanupRunner::Present& present, const RunControl& control) {
                return cleaning.runner.run(rule, RunTrigger::cleanNow, present, control);
            },
            cleaning);
        session.output.line();
        session.output.line({{rule.name, Style::bold}});
        if (report.status != RunStatus::skipped) showRun(session.output, session.guards, report);
        const bool hadNothingToDo = report.skipReason == RunSkipReason::nothingToClean;
        if (hadNothingToDo) session.output.line({logLine(report)});
        if (isShort(report) && !hadNothingToDo) failure.sentences.push_back(rule.name + ": " + shortfall(report));
        documents.push_back(encodeJSON(report));
    }
    std::ignore = session.log.prune(session.clock());
    if (auto shown = session.output.document(JSONObject{{"reports", std::move(documents)}}); !shown) return shown;
    if (failure.sentences.empty()) return {};
    return std::unexpected(std::move(failure));
}

}  // namespace

void addCleanCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean", "Shows what a rule would remove, asks, and removes that very preview");
    const auto wanted = std::make_shared<CleanOptions>();
    command->add_option("rule", wanted->rule, "The rule: its id, a beginning of it, or its name")
        ->type_name("RULE")
        ->required();
    command->add_flag("--yes", wanted->isSure, "Remove it without asking");
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return clean(session, program.options, *wanted); })(program);
        };
    });
}

void addCleanNowCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean-now", "Runs every approved rule, after showing what each would free");
    const auto wanted = std::make_shared<CleanOptions>();
    command->add_flag("--yes", wanted->isSure, "Run them without asking");
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return cleanNow(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
