#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <memory>

#include "base/SpaceFormat.h"
#include "base/UnicodeText.h"
#include "cleaning/RunFields.h"
#include "cli/Amounts.h"
#include "cli/Commands.h"
#include "cli/ParsedOption.h"
#include "cli/RunDisplay.h"
#include "cli/Session.h"

namespace vostrel::cli {

namespace {

constexpr std::size_t usualLimit = 20;
constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

/// Runs of the log, and the one that is being carried out.
struct ListedRuns {
    std::vector<RunReport> runs;
    std::optional<Uuid> inHand;
};

/// A run may begin or end while the log is read. One that has no end is told as interrupted only when the log stood
/// still around the question whether it is in hand.
ListedRuns listedRuns(const Session& session, std::size_t limit) {
    constexpr int enoughAttempts = 100;
    ListedRuns listed{session.log.recent(limit), {}};
    for (int attempt = 0; attempt < enoughAttempts; ++attempt) {
        const bool allEnded =
            std::ranges::none_of(listed.runs, [](const RunReport& run) { return run.status == RunStatus::started; });
        if (allEnded) break;
        listed.inHand = session.runLock.runInHand();
        auto again = session.log.recent(limit);
        if (again == listed.runs) break;
        listed.runs = std::move(again);
    }
    return listed;
}

CommandResult listRuns(Session& session, std::size_t limit) {
    const auto [runs, inHand] = listedRuns(session, limit);
    const auto unreadable = session.log.unreadable();
    if (!runs.empty() || unreadable.empty()) showRuns(session.output, runs, inHand);
    JSONArray documents;
    for (const RunReport& run : runs)
        documents.push_back(summaryDocumentOf(run));
    if (auto shown = session.output.document(JSONObject{{"runs", std::move(documents)}}); !shown) return shown;
    if (unreadable.empty()) return {};
    Failure failure;
    failure.document = Failure::Document::written;
    for (const auto& path : unreadable)
        failure.sentences.push_back("The log cannot be read: " + session.guards.displayPath(path));
    return std::unexpected(std::move(failure));
}

std::unexpected<Failure> ambiguous(std::string_view wanted, const std::vector<RunReport>& found) {
    Failure failure{
        .sentences = {fmt::format("\"{}\" could be any of these runs; name one by more of its id:", wanted)}};
    for (const RunReport& run : found)
        failure.sentences.push_back(fmt::format("  {}  {}", run.id.text(), run.ruleName));
    return std::unexpected(std::move(failure));
}

/// The run of that id, or the only one whose id begins so.
std::expected<RunReport, Failure> findRun(std::vector<RunReport> found, std::string_view wanted) {
    std::erase_if(found, [key = folded(wanted)](const RunReport& run) {
        return key.empty() || !folded(run.id.text()).starts_with(key);
    });
    if (found.empty()) return failed(fmt::format("The log has no run \"{}\".", wanted));
    if (found.size() > 1) return ambiguous(wanted, found);
    return std::move(found.front());
}

CommandResult showOneRun(Session& session, const std::string& wanted) {
    const auto [runs, inHand] = listedRuns(session, all);
    auto found = findRun(runs, wanted);
    if (!found) return std::unexpected(std::move(found.error()));
    const RunReport run = session.log.withLists(std::move(*found));
    showRun(session.output, session.guards, run, inHand);
    return session.output.document(encodeJSON(run));
}

CommandResult pruneLog(Session& session) {
    const auto removed = session.log.prune(session.clock());
    session.output.line({removed.files == 0
                             ? "Nothing in the log is old or large enough to go."
                             : fmt::format("Removed {} of the log, {}.", counted(removed.files, "file", "files"),
                                           SpaceFormat::bytes(removed.bytes))});
    return session.output.document(JSONObject{{"removedFiles", removed.files}, {"removedBytes", removed.bytes}});
}

}  // namespace

void addLogCommand(CLI::App& app, Command& chosen) {
    auto* log = app.add_subcommand("log", "What was cleaned, and what was not and why: the runs, newest first")
                    ->fallthrough()
                    ->require_subcommand(0, 1);
    const auto limit = std::make_shared<std::size_t>(usualLimit);
    addParsed(
        *log, "--limit", "N", parseCountFromOne, [limit](int number) { *limit = static_cast<std::size_t>(number); },
        "How many runs (default: 20)");
    log->callback([&chosen, log, limit] {
        if (!log->get_subcommands().empty()) return;
        chosen = inSession([limit = *limit](Session& session) { return listRuns(session, limit); });
    });

    auto* show = log->add_subcommand("show", "One run with its items: where they are now, and what stayed and why")
                     ->fallthrough();
    const auto wanted = std::make_shared<std::string>();
    show->add_option("RUN", *wanted, "The run's id, or its beginning")->required();
    show->callback([&chosen, wanted] {
        chosen = inSession([wanted = *wanted](Session& session) { return showOneRun(session, wanted); });
    });

    log->add_subcommand("prune", "Removes the runs of more than 90 days ago, and the oldest of a log over 200 MB")
        ->fallthrough()
        ->callback([&chosen] { chosen = inSession(pruneLog); });
}

}  // namespace vostrel::cli
