#include "cleaning/RunFields.h"

#include <algorithm>

namespace vostrel {

std::optional<std::string> JSONFields<RunReport>::settle(RunReport& report) {
    const auto counts = {report.plannedItems,       report.plannedBytes,      report.plannedPathsOmitted,
                         report.deletedBytes,       report.movedToTrashBytes, report.itemsCleaned,
                         report.itemsPartlyDeleted, report.itemsFailed,       report.itemsLeftAlone,
                         report.itemsNotAttempted,  report.outcomesOmitted};
    if (std::ranges::min(counts) < 0) return "A count is below zero.";
    return std::nullopt;
}

}  // namespace vostrel
