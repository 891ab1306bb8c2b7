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
#include "cli/MapTrash.h"
#include "cli/ParsedOption.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "spacemap/SpaceMapFields.h"

namespace vostrel::cli {

namespace {

struct MapOptions {
    std::string path;
    MapExtent extent;
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
        return described(progress.get(), session.guards, elapsed.count());
    });
    return session.spaceScanner().scan(target, &progress, &Interrupt::requested);
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
    const auto target = wanted.path.empty() ? SpaceScanTarget::bootVolume(bootVolumeName)
                                            : SpaceScanTarget::choose(asGiven(wanted.path), bootVolumeName);
    const ScanResult result = scanWithProgress(session, options, target);
    // The document holds every node: it is made only to be printed.
    if (session.output.isForPeople()) {
        if (!result.tree.problem) showMap(session.output, session.guards, result, wanted.extent);
    } else if (auto shown = session.output.document(documentOf(result.tree, result.hidden())); !shown) {
        return shown;
    }
    const auto shortcoming = shortcomingOf(session, result);
    if (!shortcoming) return {};
    return std::unexpected(Failure{.sentences = {*shortcoming}, .document = Failure::Document::written});
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
    auto* const trash = takesMany(addParsed(
        *command, "--trash", "ITEM", [](std::string item) { return Parsed<std::filesystem::path>(asGiven(item)); },
        [wanted](std::filesystem::path item) { wanted->trash.push_back(std::move(item)); },
        "Move these files and folders, which lie in PATH, to the Trash"));
    command->add_flag("--yes", wanted->isSure, "Move them without asking")->needs(trash);
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return map(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
