#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/SpaceFormat.h"
#include "cli/Amounts.h"
#include "cli/Commands.h"
#include "cli/GivenPath.h"
#include "cli/Interrupt.h"
#include "cli/MapDisplay.h"
#include "cli/MapPage.h"
#include "cli/MapTrash.h"
#include "cli/ParsedOption.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "probes/SystemProbes.h"
#include "probes/SystemProcessRunner.h"
#include "spacemap/SpaceMapFields.h"

namespace vostrel::cli {

namespace {

struct MapOptions {
    std::string path;
    MapExtent extent;
    std::optional<std::filesystem::path> page;
    std::vector<std::filesystem::path> trash;
    bool isSure = false;
};

/// "1,204 files, 3.2 GB, 120,400 files a second  ~/Downloads".
std::string described(const ScanProgress& progress, const PathGuards& guards, double seconds) {
    const auto rate = static_cast<std::int64_t>(static_cast<double>(progress.files) / std::max(seconds, 0.001));
    return fmt::format("{}, {}, {} a second  {}", counted(progress.files, "file", "files"),
                       SpaceFormat::bytes(progress.bytes), grouped(rate), guards.displayPath(progress.current));
}

ScanResult scanWithProgress(Session& session, const GlobalOptions& options, const SpaceScanTarget& target) {
    ScanProgressBox progress;
    const std::uint64_t begun = SpaceScanner::steadyNanoseconds();
    const ProgressLine line(options, [&, begun] {
        const std::chrono::duration<double> elapsed =
            std::chrono::nanoseconds(SpaceScanner::steadyNanoseconds() - begun);
        return described(progress.read(), session.guards, elapsed.count());
    });
    return session.spaceScanner().scan(target, &progress, &Interrupt::requested);
}

/// What a whole disk hides, with what the system itself says of it.
std::optional<HiddenSpace> hiddenSpaceOf(const ScanResult& result) {
    if (!result.hidden()) return std::nullopt;
    const auto probes = SystemProbes::ofThisSystem(std::make_shared<SystemProcessRunner>());
    const WalkBudget budget{.isCancelled = &Interrupt::requested};
    SystemSpaceFigures figures;
    if (const auto swap = probes.swap(budget).value()) figures.swapFiles = swap->totalBytes;
    if (const auto snapshots = probes.localSnapshots(budget).value())
        figures.localSnapshotCount = std::ssize(*snapshots);
    return result.hidden(figures);
}

CommandResult printDocument(Output& output, const SpaceTree& tree, const std::optional<HiddenSpace>& hidden) {
    const auto written = writeDocument(tree, hidden, [&](std::string_view piece) { output.documentPiece(piece); });
    if (!written) return failed("The result could not be written as JSON: " + written.error().text());
    output.documentPiece("\n");
    return {};
}

Parsed<std::filesystem::path> parsePage(const std::string& text) {
    auto file = asGiven(text);
    if (!file.has_filename()) return std::unexpected("must be a file");
    return file;
}

/// What keeps the map from being whole, for the exit status.
std::optional<std::string> shortcomingOf(const Session& session, const ScanResult& result) {
    const SpaceTree& tree = result.tree;
    if (tree.problem) return problemSentence(*tree.problem, session.guards.displayPath(result.target.path()));
    switch (tree.ending) {
        case SpaceTree::Ending::complete:
            return std::nullopt;
        case SpaceTree::Ending::cancelled:
            return Interrupt::sentence;
        case SpaceTree::Ending::deadline:
            return "The scan took too long and was stopped. The sizes are of what it had seen by then.";
    }
    return std::nullopt;
}

CommandResult map(Session& session, const GlobalOptions& options, const MapOptions& wanted) {
    constexpr const char* bootVolumeName = "Startup disk";
    if (!wanted.trash.empty()) {
        const auto mapped = wanted.path.empty() ? std::filesystem::path("/") : asGiven(wanted.path);
        return trashFromMap(session, mapped, wanted.trash, wanted.isSure ? Consent::given : Consent::asked);
    }
    if (wanted.page) {
        if (auto allowed = mayWritePage(session, *wanted.page); !allowed) return allowed;
    }
    const auto target = wanted.path.empty() ? SpaceScanTarget::bootVolume(bootVolumeName)
                                            : SpaceScanTarget::choose(asGiven(wanted.path), bootVolumeName);
    const ScanResult result = scanWithProgress(session, options, target);
    const auto hidden = hiddenSpaceOf(result);
    if (session.output.isForPeople()) {
        if (!result.tree.problem) showMap(session.output, session.guards, result.tree, hidden, wanted.extent);
    } else if (auto shown = printDocument(session.output, result.tree, hidden); !shown) {
        return shown;
    }
    Failure failure;
    failure.document = Failure::Document::written;
    if (const auto shortcoming = shortcomingOf(session, result)) failure.sentences.push_back(*shortcoming);
    if (wanted.page && !result.tree.problem) {
        if (auto written = writePage(session, result.tree, hidden, *wanted.page); !written)
            failure.sentences.push_back(written.error().sentences.front());
    }
    if (failure.sentences.empty()) return {};
    return std::unexpected(std::move(failure));
}

}  // namespace

void addMapCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("map", "Where the space of a folder, or of the startup disk, goes");
    const auto wanted = std::make_shared<MapOptions>();
    command->add_option("path", wanted->path, "The folder (default: the startup disk)")->type_name("PATH");
    addParsed(
        *command, "--top", "N", parseCount,
        [wanted](int count) { wanted->extent.lines = static_cast<std::size_t>(count); },
        "Print so many folders and files, the largest");
    addParsed(
        *command, "--depth", "N", parseCount,
        [wanted](int count) { wanted->extent.levels = static_cast<std::size_t>(count); },
        "Print so many levels of folders");
    auto* const page = addParsed(
        *command, "--html", "FILE", parsePage, [wanted](std::filesystem::path file) { wanted->page = std::move(file); },
        "Also write the map as one page for a browser");
    auto* const trash = takesMany(addParsed(
        *command, "--trash", "ITEM", [](std::string item) { return Parsed<std::filesystem::path>(asGiven(item)); },
        [wanted](std::filesystem::path item) { wanted->trash.push_back(std::move(item)); },
        "Move these files and folders, which lie in PATH, to the Trash"));
    trash->excludes(page);
    command->add_flag("--yes", wanted->isSure, "Move them without asking")->needs(trash);
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return map(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
