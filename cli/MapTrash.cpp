#include "cli/MapTrash.h"

#include <fmt/format.h>

#include <expected>
#include <string>
#include <tuple>
#include <utility>

#include "cleaning/ChosenItemPlan.h"
#include "cleaning/RunFields.h"
#include "cli/Cleaning.h"
#include "cli/Interrupt.h"
#include "cli/PlanDisplay.h"
#include "cli/RunDisplay.h"
#include "rules/FullPath.h"
#include "rules/SkipReason.h"

namespace vostrel::cli {

namespace fs = std::filesystem;

namespace {

/// Why no rule could take the item. What is said of a folder as a rule's would send its reader to choose another
/// folder.
std::string whyNot(const Session& session, const fs::path& item, const PlanError& error) {
    if (error.kind != PlanError::Kind::protectedRoot) return error.sentence;
    if (auto refusal = session.guards.refusalForItem(item)) return *std::move(refusal);
    return fmt::format("Vostrel removes nothing that lies directly in {}. Move it to the Trash yourself.",
                       session.guards.displayPath(item.parent_path()));
}

/// The preview of one item, or the sentence that says why it stays.
std::expected<CleanupPlan, std::string> planned(Session& session, const fs::path& mapped, const fs::path& item) {
    const std::string shown = session.guards.displayPath(item);
    if (item == mapped || !holds(mapped, item.parent_path()))
        return std::unexpected(fmt::format("{} does not lie in {}.", shown, session.guards.displayPath(mapped)));
    auto plan = planOfChosenItem(session.planner(), item, session.clock(), &Interrupt::requested);
    if (!plan) return std::unexpected(fmt::format("{}: {}", shown, whyNot(session, item, plan.error())));
    if (!plan->items.empty()) return *std::move(plan);
    if (plan->skipped.empty()) return std::unexpected("There is nothing at " + shown + ".");
    const SkippedItem& left = plan->skipped.front();
    return std::unexpected(left.refusal ? fmt::format("{}: {}", shown, *left.refusal)
                                        : fmt::format("{}: left alone, {}.", shown, phrase(left.reason)));
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
    for (const CleanupPlan& plan : plans)
        showPlan(session.output, session.guards, plan);
    const std::string question = questionFor(CleanupAction::trash, static_cast<std::int64_t>(plans.size()));
    if (auto agreed = agree(session, consent, question); !agreed) return agreed;

    const Cleaning cleaning(session);
    const RunControl control(&Interrupt::requested);
    JSONArray documents;
    failure.document = Failure::Document::written;
    for (const CleanupPlan& plan : plans) {
        const RunReport report = cleaning.runner.runSpaceTrash(plan, control);
        if (report.status != RunStatus::skipped) showRun(session.output, session.guards, report);
        if (isShort(report)) failure.sentences.push_back(shortfall(report));
        documents.push_back(encodeJSON(report));
        if (Interrupt::requested()) break;
    }
    std::ignore = session.log.prune(session.clock());
    if (auto shown = session.output.document(JSONObject{{"reports", std::move(documents)}}); !shown) return shown;
    if (failure.sentences.empty()) return {};
    return std::unexpected(std::move(failure));
}

}  // namespace vostrel::cli
