#include "cli/MapTrash.h"

#include <fmt/format.h>

#include <expected>
#include <string>
#include <utility>

#include "cleaning/ChosenItemPlan.h"
#include "cli/ChosenTrash.h"
#include "cli/Interrupt.h"
#include "rules/FullPath.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

/// The preview of one item, or the sentence that says why it stays.
std::expected<CleanupPlan, std::string> planned(Session& session, const fs::path& mapped, const fs::path& item) {
    const std::string shown = session.guards.displayPath(item);
    if (item == mapped || !holds(mapped, item.parent_path()))
        return std::unexpected(fmt::format("{} does not lie in {}.", shown, session.guards.displayPath(mapped)));
    auto plan = planOfChosenItem(session.planner(), item, session.clock(), &Interrupt::requested);
    if (!plan) return std::unexpected(whyNoPlan(session, item, plan.error()));
    if (plan->items.empty()) return std::unexpected(whyNotPlanned(session, *plan, item));
    return *std::move(plan);
}

}  // namespace

CommandResult trashFromMap(Session& session, const fs::path& mapped, const std::vector<fs::path>& items,
                           Consent consent) {
    std::vector<CleanupPlan> plans;
    Failure failure;
    for (const fs::path& item : items) {
        auto plan = planned(session, mapped, item);
        if (Interrupt::requested()) return failed(Interrupt::sentence);
        if (plan) {
            plans.push_back(*std::move(plan));
        } else {
            failure.sentences.push_back(std::move(plan).error());
        }
    }
    if (!failure.sentences.empty()) return std::unexpected(std::move(failure));
    return trashChosen(session, plans, consent,
                       [](const CleanupRunner& runner, const CleanupPlan& plan, const RunControl& control) {
                           return runner.runSpaceTrash(plan, control);
                       });
}

}  // namespace vostrel::cli
