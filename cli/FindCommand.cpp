#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/SpaceFormat.h"
#include "cli/Amounts.h"
#include "cli/Commands.h"
#include "cli/FindDisplay.h"
#include "cli/FindTrash.h"
#include "cli/GivenPath.h"
#include "cli/Interrupt.h"
#include "cli/ParsedOption.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "finder/FinderFields.h"

namespace vostrel::cli {

namespace {

namespace fs = std::filesystem;

struct FindOptions {
    std::vector<fs::path> paths;
    std::optional<std::int64_t> largeBytes;
    std::optional<int> oldMonths;
    std::optional<std::int64_t> duplicateBytes;
    std::size_t lines = FindExtent().lines;
    std::vector<fs::path> trash;
    bool trashesDuplicates = false;
    bool isSure = false;

    /// What is not asked for is not looked for, unless nothing is.
    [[nodiscard]] FindExtent extent() const {
        if (!largeBytes && !oldMonths && !duplicateBytes) return {.lines = lines};
        return {.large = largeBytes.has_value(),
                .old = oldMonths.has_value(),
                .duplicates = duplicateBytes.has_value(),
                .lines = lines};
    }

    [[nodiscard]] FinderCriteria criteria() const {
        constexpr auto never = std::numeric_limits<std::int64_t>::max();
        const FindExtent wanted = extent();
        FinderCriteria chosen;
        chosen.largeBytes = wanted.large ? largeBytes.value_or(chosen.largeBytes) : never;
        chosen.oldMonths = oldMonths.value_or(chosen.oldMonths);
        if (!wanted.old) chosen.oldMinBytes = never;
        chosen.duplicateMinBytes = wanted.duplicates ? duplicateBytes.value_or(chosen.duplicateMinBytes) : never;
        return chosen;
    }
};

/// "1,204 files, 310 folders  ~/Downloads", "First blocks: 120 of 400 files, 7.8 MB of 26.2 MB  ~/Downloads/film".
std::string described(const FinderProgress& progress, const PathGuards& guards) {
    const std::string current = guards.displayPath(progress.current);
    if (progress.stage == FinderProgress::Stage::walking) {
        return fmt::format("{}, {}  {}", counted(progress.files, "file", "files"),
                           counted(progress.folders, "folder", "folders"), current);
    }
    const std::string files = fmt::format("{} of {}", grouped(progress.done), counted(progress.total, "file", "files"));
    if (progress.stage == FinderProgress::Stage::dates) return "Dates: " + files;
    const char* stage = progress.stage == FinderProgress::Stage::firstBlocks ? "First blocks" : "Comparing";
    return fmt::format("{}: {}, {} of {}  {}", stage, files, SpaceFormat::bytes(progress.bytesDone),
                       SpaceFormat::bytes(progress.bytesTotal), current);
}

FinderResult search(Session& session, const GlobalOptions& options, const FindOptions& wanted) {
    FinderRequest request{.roots = {}, .criteria = wanted.criteria(), .now = session.clock()};
    for (const fs::path& path : wanted.paths)
        request.roots.push_back(path.native());
    if (request.roots.empty()) request.roots.push_back(session.places.home.native());
    FinderProgressBox progress;
    const ProgressLine line(options, [&] { return described(progress.read(), session.guards); });
    return session.finderScanner().scan(request, &progress, &Interrupt::requested);
}

/// What keeps the search from being whole, for the exit status.
std::vector<std::string> shortcomingsOf(const Session& session, const FinderResult& result) {
    std::vector<std::string> sentences;
    for (const FinderRootState& root : result.walk.roots) {
        if (const auto* unsearched = std::get_if<FinderUnsearchedRoot>(&root))
            sentences.push_back(problemSentence(*unsearched, session.guards));
    }
    if (result.ending == FinderResult::Ending::cancelled) sentences.emplace_back(Interrupt::sentence);
    if (result.ending == FinderResult::Ending::deadline)
        sentences.emplace_back("The search took too long and was stopped. It lists what it had found by then.");
    return sentences;
}

/// As the search spells it: with the links of the folder that holds it resolved.
fs::path asFound(const fs::path& file) {
    std::error_code problem;
    const fs::path folder = fs::canonical(file.parent_path(), problem);
    return problem ? file : folder / file.filename();
}

CommandResult find(Session& session, const GlobalOptions& options, const FindOptions& wanted) {
    const FinderResult result = search(session, options, wanted);
    auto shortcomings = shortcomingsOf(session, result);
    if (wanted.trashesDuplicates || !wanted.trash.empty()) {
        if (!shortcomings.empty()) return std::unexpected(Failure{.sentences = std::move(shortcomings)});
        const Consent consent = wanted.isSure ? Consent::given : Consent::asked;
        if (wanted.trashesDuplicates) {
            const auto surplus = surplusCopies(result);
            if (surplus.empty()) return failed("There are no copies to move to the Trash.");
            return trashFound(session, result, surplus, WhenOneStays::othersGo, consent);
        }
        std::set<fs::path> chosen;
        for (const fs::path& file : wanted.trash)
            chosen.insert(asFound(file));
        return trashFound(session, result, chosen, WhenOneStays::nothingGoes, consent);
    }
    const bool wasSearched = std::ranges::any_of(
        result.walk.roots, [](const FinderRootState& root) { return std::holds_alternative<FinderRootInfo>(root); });
    if (wasSearched) showFound(session.output, session.guards, result, wanted.extent());
    if (auto shown = session.output.document(documentOf(result)); !shown) return shown;
    if (shortcomings.empty()) return {};
    return std::unexpected(Failure{.sentences = std::move(shortcomings), .document = Failure::Document::written});
}

}  // namespace

void addFindCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("find", "Large, old and duplicate files");
    const auto wanted = std::make_shared<FindOptions>();
    command
        ->add_option_function<std::vector<std::string>>(
            "path",
            [wanted](const std::vector<std::string>& paths) {
                for (const std::string& path : paths)
                    wanted->paths.push_back(asGiven(path));
            },
            "The folders (default: the home folder)")
        ->type_name("PATH");
    addParsed(
        *command, "--large", "SIZE", parseSize, [wanted](std::int64_t bytes) { wanted->largeBytes = bytes; },
        "Files of so much space (default: 500 MB)");
    addParsed(
        *command, "--old", "MONTHS", parseCount, [wanted](int months) { wanted->oldMonths = months; },
        "Files not used for so many months (default: 12)");
    addParsed(
        *command, "--duplicates", "SIZE", parseSize, [wanted](std::int64_t bytes) { wanted->duplicateBytes = bytes; },
        "Files of so many bytes with the same content (default: 1 MB)");
    addParsed(
        *command, "--top", "N", parseCount, [wanted](int count) { wanted->lines = static_cast<std::size_t>(count); },
        "Print so many of each");
    auto* const trash = takesMany(addParsed(
        *command, "--trash", "FILE", [](const std::string& file) { return Parsed<fs::path>(asGiven(file)); },
        [wanted](fs::path file) { wanted->trash.push_back(std::move(file)); },
        "Move these files, which the search lists, to the Trash"));
    auto* const duplicates = command->add_flag("--trash-duplicates", wanted->trashesDuplicates,
                                               "Move all but one copy of each group to the Trash");
    duplicates->excludes(trash);
    auto* const sure = command->add_flag("--yes", wanted->isSure, "Move them without asking");
    command->fallthrough()->callback([&chosen, wanted, trash, duplicates, sure] {
        if (sure->count() > 0 && trash->count() + duplicates->count() == 0)
            throw CLI::RequiresError("--yes", "--trash or --trash-duplicates");
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return find(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
