#include "cli/RulePreview.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "base/ProgressBox.h"
#include "base/SpaceFormat.h"
#include "cleaning/CleanupPlanner.h"
#include "cli/Interrupt.h"
#include "cli/PlanDisplay.h"
#include "cli/ProgressLine.h"
#include "cli/RuleSearch.h"

namespace vostrel::cli {

namespace {

/// "~/Downloads/dataset   1,204 files, 3.2 GB, 120,400 files a second".
std::string described(const PlanProgress& progress, const PathGuards& guards, Duration elapsed) {
    if (progress.folder.empty()) return "Looking at the rule's folders";
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const auto rate = static_cast<std::int64_t>(static_cast<double>(progress.files) / std::max(seconds, 0.001));
    return fmt::format("{}, {}, {} a second  {}", counted(progress.files, "file", "files"),
                       SpaceFormat::bytes(progress.bytes), grouped(rate), guards.displayPath(progress.folder));
}

}  // namespace

std::expected<CleanupPlan, PlanError> planWithProgress(Session& session, const GlobalOptions& options,
                                                       const Rule& rule) {
    const auto progress = std::make_shared<ProgressBox<PlanProgress>>();
    CleanupPlanner planner = session.planner();
    planner.progress = progress;
    const auto begun = std::chrono::steady_clock::now();
    const ProgressLine line(options, [&, begun] {
        return described(progress->read(), session.guards, std::chrono::steady_clock::now() - begun);
    });
    return planner.plan(rule, session.clock(), &Interrupt::requested);
}

std::expected<RulePreview, Failure> previewRule(Session& session, const GlobalOptions& options,
                                                std::string_view wanted) {
    const auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    const auto found = findRule(*book, wanted);
    if (!found) return std::unexpected(found.error());
    const Rule& rule = **found;

    auto plan = planWithProgress(session, options, rule);
    if (!plan) return failed(plan.error().sentence);
    session.output.line({{rule.name, Output::Style::bold}});
    showPlan(session.output, session.guards, *plan);
    if (Interrupt::requested()) return failed(Interrupt::sentence);
    return RulePreview{rule, *std::move(plan)};
}

}  // namespace vostrel::cli
