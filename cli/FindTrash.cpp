#include "cli/FindTrash.h"

#include <fmt/format.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cleaning/ChosenItemPlan.h"
#include "cli/ChosenTrash.h"
#include "cli/Interrupt.h"
#include "finder/CopyGate.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

/// The preview of the chosen files of one folder; sentences on those that have to stay go to `failure`.
void addPlan(Session& session, const fs::path& folder, const std::set<std::string>& names,
             std::vector<CleanupPlan>& plans, Failure& failure) {
    auto plan = planOfChosenItems(session.planner(), folder, names, session.clock(), &Interrupt::requested);
    if (!plan) {
        for (const std::string& name : names)
            failure.sentences.push_back(whyNoPlan(session, folder / name, plan.error()));
        return;
    }
    std::set<std::string> missing = names;
    for (const PlannedItem& item : plan->items)
        missing.erase(item.url.filename());
    for (const std::string& name : missing)
        failure.sentences.push_back(whyNotPlanned(session, *plan, folder / name));
    plans.push_back(*std::move(plan));
}

}  // namespace

std::set<fs::path> surplusCopies(const FinderResult& result) {
    std::set<fs::path> surplus;
    for (const DuplicateGroup& group : result.groups) {
        std::set<std::int32_t> disksWithOne;
        for (const DuplicateCopy& copy : group.copies) {
            const bool hasOne = disksWithOne.contains(copy.stamp.device);
            if (hasOne && !copy.trashBlock) surplus.insert(copy.path.full());
            if (!copy.mayVanish) disksWithOne.insert(copy.stamp.device);
        }
    }
    return surplus;
}

CommandResult trashFound(Session& session, const FinderResult& result, const std::set<fs::path>& chosen,
                         WhenOneStays choice, Consent consent) {
    CopyGate gate(result, chosen, &Interrupt::requested);
    Failure failure;
    std::map<fs::path, std::set<std::string>> byFolder;
    for (const fs::path& file : chosen) {
        if (const auto refusal = gate.refusalFor(file)) {
            failure.sentences.push_back(fmt::format("{}: {}", session.guards.displayPath(file), *refusal));
        } else {
            byFolder[file.parent_path()].insert(file.filename());
        }
    }
    std::vector<CleanupPlan> plans;
    for (const auto& [folder, names] : byFolder) {
        addPlan(session, folder, names, plans, failure);
        if (Interrupt::requested()) return failed(Interrupt::sentence);
    }
    std::erase_if(plans, [](const CleanupPlan& plan) { return plan.items.empty(); });
    if (choice == WhenOneStays::othersGo && !plans.empty()) {
        for (const std::string& sentence : std::exchange(failure.sentences, {}))
            session.output.notice(sentence);
    }
    if (!failure.sentences.empty()) return std::unexpected(std::move(failure));
    return trashChosen(session, plans, consent,
                       [&](const CleanupRunner& runner, const CleanupPlan& plan, const RunControl& control) {
                           return runner.runFinderTrash(plan, std::ref(gate), control);
                       });
}

}  // namespace vostrel::cli
