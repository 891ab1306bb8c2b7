#include "cli/ChosenTrash.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "cleaning/RunFields.h"
#include "cli/Cleaning.h"
#include "cli/Interrupt.h"
#include "cli/PlanDisplay.h"
#include "cli/RunDisplay.h"
#include "rules/SkipReason.h"

namespace vostrel::cli {

CommandResult trashChosen(Session& session, const std::vector<CleanupPlan>& plans, Consent consent,
                          const RunOfPlan& run) {
    std::int64_t items = 0;
    for (const CleanupPlan& plan : plans) {
        items += std::ssize(plan.items);
        showPlan(session.output, session.guards, plan);
    }
    if (auto agreed = agree(session, consent, questionFor(CleanupAction::trash, items)); !agreed) return agreed;

    const Cleaning cleaning(session);
    const RunControl control(&Interrupt::requested);
    JSONArray documents;
    Failure failure;
    failure.document = Failure::Document::written;
    for (const CleanupPlan& plan : plans) {
        const RunReport report = run(cleaning.runner, plan, control);
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

std::string whyNoPlan(const Session& session, const std::filesystem::path& item, const PlanError& error) {
    const std::string shown = session.guards.displayPath(item);
    if (error.kind != PlanError::Kind::protectedRoot) return fmt::format("{}: {}", shown, error.sentence);
    // What is said of a folder as a rule's would send its reader to choose another folder.
    if (const auto refusal = session.guards.refusalForItem(item)) return fmt::format("{}: {}", shown, *refusal);
    return fmt::format("{}: Vostrel removes nothing that lies directly in {}. Move it to the Trash yourself.", shown,
                       session.guards.displayPath(item.parent_path()));
}

std::string whyNotPlanned(const Session& session, const CleanupPlan& plan, const std::filesystem::path& item) {
    const std::string shown = session.guards.displayPath(item);
    const auto left = std::ranges::find(plan.skipped, item, &SkippedItem::url);
    if (left == plan.skipped.end()) return "There is nothing at " + shown + ".";
    return left->refusal ? fmt::format("{}: {}", shown, *left->refusal)
                         : fmt::format("{}: left alone, {}.", shown, phrase(left->reason));
}

}  // namespace vostrel::cli
