#include "cli/RunDisplay.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

#include "base/LocalTime.h"
#include "base/SpaceFormat.h"
#include "cleaning/RunFields.h"
#include "cleaning/RunSentences.h"
#include "cli/RuleText.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;
using Status = ItemOutcome::Status;

constexpr std::size_t enoughOfAnID = 8;

struct Section {
    Status status;
    const char* title;
};

/// In the order in which they are told: what can be put back, what cannot, what stayed.
constexpr std::array sections{
    Section{Status::trashed, "Moved to the Trash:"},
    Section{Status::deleted, "Deleted for good:"},
    Section{Status::partlyDeleted, "Deleted in part:"},
    Section{Status::failed, "Could not be removed:"},
    Section{Status::changed, "Left alone, because it changed:"},
    Section{Status::refused, "Left alone, because it may not be removed:"},
    Section{Status::notAttempted, "Not reached:"},
    Section{Status::unknown, "Recorded in a way that this version does not know:"},
};

std::string triggerText(RunTrigger trigger) {
    switch (trigger) {
        case RunTrigger::manual:
            return "by hand";
        case RunTrigger::cleanNow:
            return "by hand, with every approved rule";
        case RunTrigger::schedule:
            return "by the clock";
        case RunTrigger::belowLine:
            return "because free space fell below the line";
        case RunTrigger::appQuit:
            return "because an app quit";
        case RunTrigger::unknown:
            break;
    }
    return "in a way that this version does not know";
}

Style styleOf(const RunReport& run) {
    if (run.status == RunStatus::skipped) return Style::dim;
    const bool wentWell = run.status == RunStatus::finished && run.itemsFailed == 0 && run.itemsPartlyDeleted == 0;
    return wentWell ? Style::plain : Style::warning;
}

std::string timeText(const RunReport& run) {
    const std::string start = localTime(run.startedAt);
    if (!run.finishedAt || localTime(*run.finishedAt) == start) return start;
    return start + " to " + localTime(*run.finishedAt);
}

std::string plannedText(const RunReport& run) {
    return fmt::format("{}, {}", counted(run.plannedItems, "item", "items"), SpaceFormat::bytes(run.plannedBytes));
}

/// What stayed, in numbers; the lists may not be whole.
std::string stayedText(const RunReport& run) {
    std::vector<std::string> parts;
    for (const auto& [count, words] : {std::pair(run.itemsFailed, "could not be removed"),
                                       {run.itemsPartlyDeleted, "deleted in part"},
                                       {run.itemsLeftAlone, "left alone"},
                                       {run.itemsNotAttempted, "not reached"}}) {
        if (count > 0) parts.push_back(grouped(count) + " " + words);
    }
    return fmt::format("{}", fmt::join(parts, ", "));
}

void showFacts(Output& output, const PathGuards& guards, const RunReport& run, std::optional<Uuid> runInHand) {
    std::vector<Output::Row> rows = {{{"run", Style::dim}, run.id.text()},
                                     {{"when", Style::dim}, timeText(run)},
                                     {{"started", Style::dim}, triggerText(run.trigger)},
                                     {{"action", Style::dim}, actionText(run.action)}};
    const char* label = "folders";
    for (const auto& folder : run.rootPaths)
        rows.push_back({{std::exchange(label, ""), Style::dim}, guards.displayPath(folder)});
    if (run.plannedItems > 0) rows.push_back({{"planned", Style::dim}, plannedText(run)});
    rows.push_back({{"outcome", Style::dim}, {logLine(run, runInHand), styleOf(run)}});
    if (run.status == RunStatus::skipped) {
        for (const std::string& message : run.messages)
            if (message != logLine(run)) rows.push_back({"", message});
    }
    if (const auto stayed = stayedText(run); !stayed.empty()) rows.push_back({{"stayed", Style::dim}, stayed});
    output.table(rows, {Alignment::left, Alignment::left});
}

void showOutcome(Output& output, const PathGuards& guards, const ItemOutcome& outcome) {
    output.line({"  " + guards.displayPath(outcome.path), {"  " + SpaceFormat::bytes(outcome.bytes), Style::dim}});
    if (outcome.status == Status::trashed && outcome.trashPath)
        output.line({"    moved to " + guards.displayPath(*outcome.trashPath)});
    if (outcome.message) output.line({{"    " + *outcome.message, Style::dim}});
}

void showOmission(Output& output, std::size_t listed, std::int64_t omitted) {
    const auto line = omittedLine(listed, omitted);
    if (!line) return;
    output.line();
    output.line({{*line, Style::warning}});
}

void showOutcomes(Output& output, const PathGuards& guards, const RunReport& run) {
    showOmission(output, run.outcomes.size(), run.outcomesOmitted);
    for (const auto& [status, title] : sections) {
        if (std::ranges::find(run.outcomes, status, &ItemOutcome::status) == run.outcomes.end()) continue;
        output.line();
        output.line({{title, Style::bold}});
        for (const ItemOutcome& outcome : run.outcomes)
            if (outcome.status == status) showOutcome(output, guards, outcome);
    }
}

/// Of a run that nobody knows the outcomes of: what it was to remove, and may have.
void showPlanned(Output& output, const PathGuards& guards, const RunReport& run) {
    showOmission(output, run.plannedPaths.size(), run.plannedPathsOmitted);
    output.line();
    output.line({{"It was to remove:", Style::bold}});
    for (const auto& path : run.plannedPaths)
        output.line({"  " + guards.displayPath(path)});
}

}  // namespace

void showRuns(Output& output, const std::vector<RunReport>& runs, std::optional<Uuid> runInHand) {
    if (runs.empty()) output.line({"No rule has run yet."});
    std::vector<Output::Row> rows;
    for (const RunReport& run : runs) {
        rows.push_back({{run.id.text().substr(0, enoughOfAnID), Style::dim},
                        localTime(run.startedAt),
                        {run.ruleName, Style::bold},
                        {logLine(run, runInHand), styleOf(run)}});
    }
    output.table(rows, {Alignment::left, Alignment::left, Alignment::left, Alignment::left});
}

void showRun(Output& output, const PathGuards& guards, const RunReport& run, std::optional<Uuid> runInHand) {
    output.line({{run.ruleName, Style::bold}});
    showFacts(output, guards, run, runInHand);
    if (!run.outcomes.empty()) {
        showOutcomes(output, guards, run);
    } else if (!run.plannedPaths.empty()) {
        showPlanned(output, guards, run);
    } else if (run.plannedItems > 0) {
        output.line();
        output.line({{"The list of its items could not be logged.", Style::warning}});
    }
}

bool isShort(const RunReport& report) {
    return report.status != RunStatus::finished || report.itemsFailed > 0 || report.itemsPartlyDeleted > 0 ||
           std::ranges::find(report.messages, sentences::logNotWritten) != report.messages.end();
}

std::string shortfall(const RunReport& report) {
    const bool hasOwnSentence = report.status == RunStatus::skipped && !report.messages.empty();
    return hasOwnSentence ? fmt::format("{}", fmt::join(report.messages, " ")) : logLine(report);
}

JSONValue summaryDocumentOf(const RunReport& run) {
    const JSONValue whole = encodeJSON(run);
    std::vector<JSONMember> members = whole.as<JSONObject>()->members();
    std::erase_if(members, [](const auto& each) { return each.first == "plannedPaths" || each.first == "outcomes"; });
    return JSONObject(std::move(members));
}

}  // namespace vostrel::cli
