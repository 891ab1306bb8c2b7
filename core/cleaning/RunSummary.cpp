#include "cleaning/RunSummary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <vector>

#include "base/GroupedDigits.h"
#include "cleaning/RemovedAmounts.h"

namespace vostrel {

namespace {

constexpr const char* stillBelowTitle = "Still below your line";

bool hasEnded(const RunReport& report) {
    return report.status == RunStatus::finished || report.status == RunStatus::stopped;
}

bool wasStopped(const RunReport& report) {
    return report.status == RunStatus::stopped;
}

/// Every item of every run was left alone because it had changed; not told of lists that are cut short.
bool everythingHadChanged(std::span<const RunReport> reports) {
    const auto hasChanged = [](const ItemOutcome& outcome) { return outcome.status == ItemOutcome::Status::changed; };
    bool matchedAnything = false;
    for (const RunReport& report : reports) {
        if (!hasEnded(report)) continue;
        const bool isListed = static_cast<std::int64_t>(report.outcomes.size()) == report.plannedItems;
        if (!isListed || !std::ranges::all_of(report.outcomes, hasChanged)) return false;
        matchedAnything |= !report.outcomes.empty();
    }
    return matchedAnything;
}

std::string titleOf(std::span<const RunReport> reports, const RemovedAmounts& amounts, bool isStillBelow) {
    if (std::ranges::any_of(reports, wasStopped)) return "Cleaning stopped";
    if (!amounts.removedAnything()) return "Nothing was removed";
    if (amounts.itemsFailed > 0 || amounts.itemsPartlyDeleted > 0) return "Cleaning did not finish";
    if (isStillBelow) return stillBelowTitle;
    return removedText(amounts).value_or("");
}

/// What was removed. What the title says already is not said again, but the items are counted.
void addRemoved(std::vector<std::string>& body, const std::string& title, const RemovedAmounts& amounts) {
    const auto removed = removedText(amounts);
    const std::string counted = "Removed " + itemsText(amounts.itemsCleaned);
    if (removed && *removed != title) body.push_back(*removed + ".");
    if (amounts.itemsCleaned > 0 && counted != title && counted != removed) body.push_back(counted + ".");
    if (amounts.rules.size() > 1)
        body.push_back(fmt::format("From {} rules.", grouped(static_cast<std::int64_t>(amounts.rules.size()))));
}

/// The Log is pointed to once.
void addTrouble(std::vector<std::string>& body, const RemovedAmounts& amounts) {
    const std::string failed = itemsText(amounts.itemsFailed);
    if (amounts.itemsPartlyDeleted > 0) {
        if (amounts.itemsFailed > 0) body.push_back(failed + " could not be removed.");
        body.push_back(itemsText(amounts.itemsPartlyDeleted) +
                       " could only be partly deleted. See the Log for details.");
    } else if (amounts.itemsFailed > 0) {
        body.push_back("Vostrel could not remove " + failed + ". See the Log for details.");
    }
}

/// Why nothing was removed, unless trouble tells it.
void addNothing(std::vector<std::string>& body, std::span<const RunReport> reports, const RemovedAmounts& amounts) {
    if (amounts.removedAnything() || amounts.itemsFailed > 0 || std::ranges::none_of(reports, hasEnded)) return;
    body.emplace_back(everythingHadChanged(reports)
                          ? "Everything that matched had changed since it was checked, so Vostrel left it alone. See "
                            "the Log for details."
                          : "Nothing was removed.");
}

/// Why free space is what it is.
void addFreeSpace(std::vector<std::string>& body, const RemovedAmounts& amounts) {
    if (amounts.movedToTrashBytes > 0) body.emplace_back("Space in the Trash is freed when the Trash is emptied.");
    if (amounts.freedNothingYet())
        body.emplace_back("Free space has not grown yet; local snapshots can keep deleted files for a while.");
}

void addStillBelow(std::vector<std::string>& body, const std::string& title, std::int64_t free,
                   const std::optional<std::string>& topGrowth) {
    const std::string amount = amountText(free);
    body.push_back(title == stillBelowTitle
                       ? amount + " free after running your rules. Open Vostrel to see what is using space."
                       : "Still below your line with " + amount + " free. Open Vostrel to see what is using space.");
    if (topGrowth) body.push_back(*topGrowth);
}

}  // namespace

std::optional<RunSummary> RunSummary::make(std::span<const RunReport> reports,
                                           std::optional<std::int64_t> stillBelowFree,
                                           const std::optional<std::string>& topGrowth) {
    if (std::ranges::none_of(reports, hasEnded) && !stillBelowFree) return std::nullopt;
    const RemovedAmounts amounts = RemovedAmounts::of(reports);
    const std::string title = titleOf(reports, amounts, stillBelowFree.has_value());
    std::vector<std::string> body;
    addRemoved(body, title, amounts);
    addNothing(body, reports, amounts);
    addTrouble(body, amounts);
    addFreeSpace(body, amounts);
    if (stillBelowFree) addStillBelow(body, title, *stillBelowFree, topGrowth);
    return RunSummary{title, fmt::format("{}", fmt::join(body, " "))};
}

}  // namespace vostrel
