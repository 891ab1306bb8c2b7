#include <fmt/format.h>
#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "base/ProgressBox.h"
#include "base/SpaceFormat.h"
#include "cleaning/RunFields.h"
#include "cli/Cleaning.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/PlanDisplay.h"
#include "cli/PlanProgressLine.h"
#include "cli/ProgressLine.h"
#include "cli/RuleSearch.h"
#include "cli/RunDisplay.h"
#include "cli/Session.h"

namespace vostrel::cli {

namespace {

using Style = Output::Style;

struct CleanOptions {
    std::string rule;
    bool isSure = false;
};

/// How far a run is.
struct CleanProgress {
    std::int64_t items = 0;
    std::string path;
};

/// Asks on the terminal, or goes by --yes. Without a terminal nobody can be asked.
CommandResult agree(Session& session, const CleanOptions& wanted, const std::string& question) {
    if (wanted.isSure) return {};
    const bool canAsk = session.output.isForPeople() && ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
    if (!canAsk)
        return failed("Nothing was removed: there is no terminal to ask on. Say --yes to do it without asking.");
    session.output.line({{question + " [y/N] ", Style::bold}});
    if (session.output.finish() != 0) return failed("Nothing was removed, for the preview could not be shown.");
    std::string answer;
    std::getline(std::cin, answer);
    if (Interrupt::requested()) return failed(Interrupt::sentence);
    if (answer == "y" || answer == "Y" || answer == "yes") return {};
    return failed("Nothing was removed.");
}

std::string questionFor(CleanupAction action, std::int64_t items) {
    const std::string what = counted(items, "item", "items");
    return action == CleanupAction::trash ? fmt::format("Move {} to the Trash?", what)
                                          : fmt::format("Delete {} for good?", what);
}

/// Runs with a progress line that names the item in hand.
RunReport carriedOut(Session& session, const GlobalOptions& options, const Rule& rule,
                     const std::function<RunReport(const CleanupRunner::Present&, const RunControl&)>& run,
                     const Cleaning& cleaning) {
    const auto progress = std::make_shared<ProgressBox<CleanProgress>>();
    CleanupRunner::Present present = cleaning.presentOf(rule);
    present.progress = [progress, done = std::int64_t{0}](const PlannedItem& item) mutable {
        progress->set({++done, item.url.native()});
    };
    const RunControl control(&Interrupt::requested);
    const ProgressLine line(options, [&session, progress] {
        const auto now = progress->get();
        if (now.items == 0) return std::string("Looking at the rule's folders");
        return fmt::format("Item {}  {}", grouped(now.items), session.guards.displayPath(now.path));
    });
    return run(present, control);
}

/// A run that did not do all of what the preview showed, in the terms of the exit status.
bool isShort(const RunReport& report) {
    return report.status != RunStatus::finished || report.itemsFailed > 0 || report.itemsPartlyDeleted > 0;
}

CommandResult ended(Session& session, const RunReport& report) {
    if (report.status != RunStatus::skipped) showRun(session.output, session.guards, report);
    if (auto shown = session.output.document(encodeJSON(report)); !shown) return shown;
    if (!isShort(report)) return {};
    Failure failure;
    failure.document = Failure::Document::written;
    failure.sentences.push_back(logLine(report));
    return std::unexpected(std::move(failure));
}

CommandResult clean(Session& session, const GlobalOptions& options, const CleanOptions& wanted) {
    const auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    const auto found = findRule(*book, wanted.rule);
    if (!found) return std::unexpected(found.error());
    const Rule& rule = **found;

    const auto plan = planWithProgress(session, options, rule);
    if (!plan) return failed(plan.error().sentence);
    session.output.line({{rule.name, Style::bold}});
    showPlan(session.output, session.guards, *plan);
    if (Interrupt::requested()) return failed(Interrupt::sentence);
    const auto items = static_cast<std::int64_t>(plan->items.size());
    if (rule.enabled && items > 0) {
        session.output.line();
        if (auto agreed = agree(session, wanted, questionFor(rule.action, items)); !agreed) return agreed;
    }
    const Cleaning cleaning(session);
    const RunReport report = carriedOut(
        session, options, rule,
        [&](const CleanupRunner::Present& present, const RunControl& control) {
            return cleaning.runner.run(rule, *plan, present, control);
        },
        cleaning);
    std::ignore = session.log.prune(session.clock());
    session.output.line();
    return ended(session, report);
}

/// Whether the user approved what the rule does, as far as the rule itself tells; its folders are compared when it
/// runs.
bool isApproved(const Rule& rule, const PresetCatalog& catalog) {
    return rule.enabled && rule.approval && *rule.approval == rule.approvalKey(rule.approval->roots, catalog);
}

/// What a rule would free now, or why it would do nothing.
std::string estimateOf(Session& session, const GlobalOptions& options, const Rule& rule) {
    const auto plan = planWithProgress(session, options, rule);
    if (!plan) return plan.error().sentence;
    if (plan->items.empty()) return "Nothing matches.";
    return fmt::format("{}, {}{}", counted(static_cast<std::int64_t>(plan->items.size()), "item", "items"),
                       SpaceFormat::bytes(plan->totalBytes()),
                       rule.action == CleanupAction::trash ? ", to the Trash" : ", deleted for good");
}

CommandResult cleanNow(Session& session, const GlobalOptions& options, const CleanOptions& wanted) {
    auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    std::vector<Rule> rules = book->rules;
    std::erase_if(rules, [&](const Rule& rule) { return !isApproved(rule, session.catalog); });
    if (rules.empty()) return failed("No rule is approved. Preview a rule and approve it first.");
    std::vector<Output::Row> rows;
    for (const Rule& rule : rules) {
        rows.push_back({rule.name, estimateOf(session, options, rule)});
        if (Interrupt::requested()) return failed(Interrupt::sentence);
    }
    session.output.table(rows, {Output::Alignment::left, Output::Alignment::left});
    session.output.line();
    const auto count = static_cast<std::int64_t>(rules.size());
    if (auto agreed = agree(session, wanted, fmt::format("Run {}?", counted(count, "rule", "rules"))); !agreed)
        return agreed;

    const Cleaning cleaning(session);
    JSONArray documents;
    Failure failure;
    failure.document = Failure::Document::written;
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
        if (isShort(report) && !hadNothingToDo) failure.sentences.push_back(rule.name + ": " + logLine(report));
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
