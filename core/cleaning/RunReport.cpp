#include "cleaning/RunReport.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "base/Checked.h"
#include "base/GroupedDigits.h"
#include "base/Visit.h"
#include "cleaning/RemovedAmounts.h"
#include "cleaning/RunSentences.h"

namespace vostrel {

namespace {

/// The folders that the rule names itself.
std::vector<std::filesystem::path> foldersOf(const RuleTarget& target) {
    using Folders = std::vector<std::filesystem::path>;
    return visit(
        target, [](const FolderTarget& folder) { return Folders{folder.path}; },
        [](const PresetTarget&) { return Folders{}; }, [](const ProjectScanTarget& scan) { return scan.roots; });
}

void setFolders(RunReport& report, std::vector<std::filesystem::path> folders) {
    report.rootPaths = std::move(folders);
    if (!report.rootPaths.empty()) report.rootPath = report.rootPaths.front();
}

RunReport reportOn(const Rule& rule, RunTrigger trigger, Date at) {
    RunReport report;
    report.ruleID = rule.id;
    report.ruleName = rule.name;
    report.trigger = trigger;
    report.action = rule.action;
    report.startedAt = at;
    return report;
}

std::int64_t beyondTheList(std::size_t count) {
    return static_cast<std::int64_t>(std::max(count, RunReport::maxOutcomes) - RunReport::maxOutcomes);
}

void add(std::int64_t& sum, std::int64_t bytes) {
    sum = checkedAdd(sum, bytes, "a run's sum of bytes");
}

void count(RunReport& report, const ItemOutcome& outcome) {
    switch (outcome.status) {
        case ItemOutcome::Status::trashed:
            add(report.movedToTrashBytes, outcome.bytes);
            ++report.itemsCleaned;
            break;
        case ItemOutcome::Status::deleted:
            add(report.deletedBytes, outcome.bytes);
            ++report.itemsCleaned;
            break;
        case ItemOutcome::Status::partlyDeleted:
            add(report.deletedBytes, outcome.bytes);
            ++report.itemsPartlyDeleted;
            break;
        case ItemOutcome::Status::failed:
            ++report.itemsFailed;
            break;
        case ItemOutcome::Status::changed:
        case ItemOutcome::Status::refused:
            ++report.itemsLeftAlone;
            break;
        case ItemOutcome::Status::notAttempted:
            ++report.itemsNotAttempted;
            break;
        case ItemOutcome::Status::unknown:
            break;
    }
}

std::string endedLine(const RunReport& report) {
    const auto amounts = RemovedAmounts::of({&report, 1});
    std::vector<std::string> line;
    if (const auto removed = removedText(amounts)) line.push_back(*removed + ".");
    if (!amounts.removedAnything()) line.emplace_back("Nothing was removed.");
    if (amounts.itemsFailed > 0) line.push_back(itemsText(amounts.itemsFailed) + " could not be removed.");
    if (amounts.itemsPartlyDeleted > 0)
        line.push_back(itemsText(amounts.itemsPartlyDeleted) + " could only be partly deleted.");
    line.insert(line.end(), report.messages.begin(), report.messages.end());
    return fmt::format("{}", fmt::join(line, " "));
}

}  // namespace

RunReport RunReport::started(Uuid id, const Rule& rule, const CleanupPlan& plan, RunTrigger trigger, Date at) {
    RunReport report = reportOn(rule, trigger, at);
    report.id = id;
    report.status = RunStatus::started;
    std::vector<std::filesystem::path> folders;
    for (const PlanRoot& root : plan.roots)
        folders.push_back(root.url);
    setFolders(report, std::move(folders));
    report.plannedItems = static_cast<std::int64_t>(plan.items.size());
    report.plannedBytes = plan.totalBytes();
    const std::size_t listed = std::min(plan.items.size(), maxOutcomes);
    report.plannedPaths.reserve(listed);
    for (std::size_t index = 0; index < listed; ++index)
        report.plannedPaths.push_back(plan.items[index].url);
    report.plannedPathsOmitted = beyondTheList(plan.items.size());
    return report;
}

RunReport RunReport::skipped(const Rule& rule, RunTrigger trigger, RunSkipReason reason, Date at,
                             std::optional<std::string> message) {
    RunReport report = reportOn(rule, trigger, at);
    report.id = Uuid::random();
    report.status = RunStatus::skipped;
    report.skipReason = reason;
    report.finishedAt = at;
    setFolders(report, foldersOf(rule.target));
    if (message) report.messages.push_back(std::move(*message));
    return report;
}

RunReport RunReport::finished(Date at, std::vector<ItemOutcome> itemOutcomes, Ending ending,
                              std::optional<std::int64_t> freed, std::vector<std::string> sentences) const {
    RunReport report = *this;
    report.status = ending == Ending::stopped ? RunStatus::stopped : RunStatus::finished;
    report.finishedAt = at;
    for (const ItemOutcome& outcome : itemOutcomes)
        count(report, outcome);
    report.outcomesOmitted = beyondTheList(itemOutcomes.size());
    report.outcomes = std::move(itemOutcomes);
    if (report.outcomes.size() > maxOutcomes) report.outcomes.resize(maxOutcomes);
    report.freedBytes = freed;
    report.messages = std::move(sentences);
    return report;
}

RunReport RunReport::countsOnly() const {
    RunReport report = *this;
    report.plannedPaths.clear();
    report.outcomes.clear();
    report.outcomesNotLogged = true;
    return report;
}

std::string logLine(const RunReport& report, std::optional<Uuid> runInHand) {
    switch (report.status) {
        case RunStatus::started:
            return report.id == runInHand ? "Running now." : sentences::interrupted;
        case RunStatus::skipped:
            return logLine(report.skipReason.value_or(RunSkipReason::unknown));
        case RunStatus::finished:
        case RunStatus::stopped:
            break;
    }
    return endedLine(report);
}

std::optional<std::string> omittedLine(std::size_t listed, std::int64_t omitted) {
    if (omitted <= 0) return std::nullopt;
    return fmt::format("The log lists the first {} items. {} more are not listed.",
                       grouped(static_cast<std::int64_t>(listed)), grouped(omitted));
}

}  // namespace vostrel
