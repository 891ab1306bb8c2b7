#include "cleaning/RemovedAmounts.h"

#include <algorithm>

#include "base/Checked.h"
#include "base/GroupedDigits.h"
#include "base/SpaceFormat.h"
#include "cleaning/RunReport.h"

namespace vostrel {

namespace {

void add(std::int64_t& sum, std::int64_t amount) {
    sum = checkedAdd(sum, amount, "the sum of several runs");
}

void add(RemovedAmounts& amounts, const RunReport& report) {
    add(amounts.deletedBytes, report.deletedBytes);
    add(amounts.movedToTrashBytes, report.movedToTrashBytes);
    add(amounts.itemsCleaned, report.itemsCleaned);
    add(amounts.itemsPartlyDeleted, report.itemsPartlyDeleted);
    add(amounts.itemsFailed, report.itemsFailed);
    if (report.itemsCleaned > 0 || report.itemsPartlyDeleted > 0) amounts.rules.insert(report.ruleID);
    if (report.deletedBytes == 0) return;
    if (!report.freedBytes) amounts.freedBytes.reset();
    if (amounts.freedBytes) add(*amounts.freedBytes, *report.freedBytes);
}

std::string deletedText(const RemovedAmounts& amounts) {
    const bool hasGrown = amounts.freedBytes && *amounts.freedBytes > 0;
    if (!hasGrown) return "Deleted " + amountText(amounts.deletedBytes);
    return "Freed " + amountText(std::min(*amounts.freedBytes, amounts.deletedBytes));
}

}  // namespace

RemovedAmounts RemovedAmounts::of(std::span<const RunReport> reports) {
    RemovedAmounts amounts;
    for (const RunReport& report : reports)
        add(amounts, report);
    return amounts;
}

std::string amountText(std::int64_t bytes) {
    return SpaceFormat::bytes(std::max<std::int64_t>(bytes, 1));
}

std::string itemsText(std::int64_t count) {
    return grouped(count) + (count == 1 ? " item" : " items");
}

std::optional<std::string> removedText(const RemovedAmounts& amounts) {
    const std::string moved = amountText(amounts.movedToTrashBytes) + " to the Trash";
    if (amounts.deletedBytes > 0 && amounts.movedToTrashBytes > 0) return deletedText(amounts) + ", moved " + moved;
    if (amounts.deletedBytes > 0) return deletedText(amounts);
    if (amounts.movedToTrashBytes > 0) return "Moved " + moved;
    if (amounts.itemsCleaned > 0) return "Removed " + itemsText(amounts.itemsCleaned);
    return std::nullopt;
}

}  // namespace vostrel
