#include "cli/RuleOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "cli/Amounts.h"
#include "cli/ChosenFiles.h"
#include "cli/GivenPath.h"
#include "cli/ParsedOption.h"
#include "cli/StoredWord.h"
#include "rules/RuleFields.h"

namespace vostrel::cli {

namespace {

namespace fs = std::filesystem;

Parsed<std::string> anyText(std::string text) {
    return text;
}

Parsed<fs::path> parsePath(std::string_view text) {
    return asGiven(text);
}

}  // namespace

void RuleOptions::addTo(CLI::App& command) {
    command.add_option("NAME", name, "What the rule is called")->required();
    addTarget(command);
    addFilter(command);
    addAction(command);
    addTriggers(command);
}

void RuleOptions::addTarget(CLI::App& command) {
    addParsed(
        command, "--folder", "PATH", parsePath, [this](fs::path path) { folder = std::move(path); },
        "Clean this folder");
    addParsed(
        command, "--preset", "ID", anyText, [this](std::string id) { preset = std::move(id); },
        "Clean the folders of this preset");
    auto* const projects = takesMany(addParsed(
        command, "--projects", "ROOT", parsePath, [this](fs::path root) { projectRoots.push_back(std::move(root)); },
        "Clean build folders of untouched projects below these folders"));
    takesMany(addParsed(
                  command, "--kinds", "KIND", parseWord<ArtifactKind>,
                  [this](ArtifactKind kind) { kinds.insert(kind); }, "Which kinds of build folder"))
        ->needs(projects);
    addParsed(
        command, "--untouched-days", "N", parseCount, [this](int days) { untouchedDays = days; },
        "How long nobody has touched such a project")
        ->needs(projects);
}

void RuleOptions::addFilter(CLI::App& command) {
    auto* const projects = command.get_option("--projects");
    addParsed(
        command, "--older-than", "DAYS", parseCount, [this](int days) { filter.minAgeDays = days; },
        "Leave younger items alone");
    addParsed(
        command, "--by", "BASIS", parseWord<AgeBasis>, [this](AgeBasis word) { basis = word; },
        "The date that age goes by: modified, added or lastOpened")
        ->excludes(projects);
    addParsed(
        command, "--min-size", "SIZE", parseSize, [this](std::int64_t size) { filter.minSizeBytes = size; },
        "Leave smaller items alone");
    takesMany(addParsed(
        command, "--include", "GLOB", anyText,
        [this](std::string glob) { filter.includeGlobs.push_back(std::move(glob)); },
        "Take only items with such names"));
    takesMany(addParsed(
        command, "--exclude", "GLOB", anyText,
        [this](std::string glob) { filter.excludeGlobs.push_back(std::move(glob)); },
        "Keep items with such names, and folders that hold one"));
    addParsed(
        command, "--scope", "SCOPE", parseWord<RuleScope>, [this](RuleScope word) { scope = word; },
        "topLevelItems (each item directly in the folder), allFiles or topLevelFiles")
        ->excludes(projects);
    takesMany(addParsed(
        command, "--pin", "FILE", anyText, [this](const std::string& file) { pins.emplace_back(file); },
        "Take only these files of the folder"));
}

void RuleOptions::addAction(CLI::App& command) {
    auto* const trash = command.add_flag_callback(
        "--trash", [this] { action = CleanupAction::trash; }, "Move items to the Trash (unless told otherwise)");
    command
        .add_flag_callback(
            "--delete", [this] { action = CleanupAction::deletePermanently; }, "Delete items for good")
        ->excludes(trash);
    command.add_flag("--disabled", disabled, "Make the rule, but do not let it run by itself yet");
}

void RuleOptions::addTriggers(CLI::App& command) {
    takesMany(addParsed(
        command, "--daily", "HH:MM", parseTimeOfDay, [this](DailyTrigger trigger) { triggers.emplace_back(trigger); },
        "Run every day at that time"));
    takesMany(addParsed(
        command, "--weekly", "DAY@HH:MM", parseTimeOfWeek,
        [this](WeeklyTrigger trigger) { triggers.emplace_back(trigger); },
        "Run on that day of the week, 1 to 7 (1 is Sunday) or its name"));
    command.add_flag_callback(
        "--end-of-day", [this] { triggers.emplace_back(EndOfDayTrigger{}); }, "Run at the end of the day");
    command.add_flag_callback(
        "--below-line", [this] { triggers.emplace_back(BelowLineTrigger{}); },
        "Run when free space falls below your line");
    takesMany(addParsed(
        command, "--when-app-quits", "ID", anyText,
        [this](std::string id) { triggers.emplace_back(WhenAppQuitsTrigger{std::move(id)}); },
        "Run when that application quits"));
    takesMany(addParsed(
        command, "--pause-while", "ID", anyText, [this](std::string id) { pauseWhileRunning.push_back(std::move(id)); },
        "Wait while one of these applications is running"));
}

void RuleOptions::limit(RuleFilter& made) const {
    if (filter.minAgeDays) made.minAgeDays = filter.minAgeDays;
    if (basis) made.ageBasis = *basis;
    made.minSizeBytes = filter.minSizeBytes;
    made.includeGlobs = filter.includeGlobs;
    made.excludeGlobs = filter.excludeGlobs;
    if (!pins.empty()) made.scope = RuleScope::topLevelFiles;
    if (scope) made.scope = *scope;
}

std::expected<Rule, Failure> RuleOptions::rule(Date now, const PresetCatalog& catalog) const {
    if ((folder ? 1 : 0) + (preset ? 1 : 0) + (projectRoots.empty() ? 0 : 1) != 1)
        return wrongCommandLine("Name what to clean with exactly one of --folder, --preset and --projects.");
    if (!pins.empty() && !folder) return wrongCommandLine("--pin chooses files of a --folder.");

    const Preset* const known = preset ? catalog.preset(*preset) : nullptr;
    Rule rule = known ? known->draftRule(now) : Rule{};
    rule.id = Uuid::random();
    rule.name = name;
    rule.enabled = !disabled;
    if (folder) rule.target = FolderTarget{*folder};
    if (preset) rule.target = PresetTarget{*preset};
    if (!projectRoots.empty()) rule.target = ProjectScanTarget{projectRoots, kinds, untouchedDays};
    limit(rule.filter);
    for (const fs::path& file : pins) {
        auto chosen = chosenFile(folder.value_or(fs::path()), file);
        if (!chosen) return std::unexpected(chosen.error());
        rule.filter.pinnedFiles.push_back(std::move(*chosen));
    }
    if (action) rule.action = *action;
    rule.triggers = triggers;
    for (const std::string& id : pauseWhileRunning) {
        const bool isListed = std::ranges::find(rule.pauseWhileRunning, id) != rule.pauseWhileRunning.end();
        if (!isListed) rule.pauseWhileRunning.push_back(id);
    }
    rule.createdAt = now;
    return rule;
}

}  // namespace vostrel::cli
