#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <string_view>

#include "cli/Commands.h"
#include "cli/RuleText.h"
#include "cli/Session.h"
#include "rules/PresetFolders.h"
#include "rules/RuleFields.h"

namespace vostrel::cli {

namespace {

using Alignment = Output::Alignment;
using Style = Output::Style;

struct GroupNames {
    Preset::Group group;
    std::string_view stored;
    const char* shown;
};

constexpr std::array groups{
    GroupNames{Preset::Group::developer, "developer", "Developer tools"},
    GroupNames{Preset::Group::browsers, "browsers", "Browsers"},
    GroupNames{Preset::Group::appCaches, "appCaches", "Applications"},
    GroupNames{Preset::Group::files, "files", "Your files"},
};

std::string storedName(Preset::Group group) {
    return std::string(std::ranges::find(groups, group, &GroupNames::group)->stored);
}

JSONValue documentOf(const Preset& preset, const PresetFolders& here) {
    std::vector<JSONMember> fields{
        {"id", preset.id},
        {"group", storedName(preset.group)},
        {"name", preset.name},
        {"summary", preset.summary},
        {"reason", preset.reason},
        {"action", encodeJSON(preset.action)},
        {"trashOnly", preset.trashOnly},
        {"ageBasis", encodeJSON(preset.ageBasis)},
        {"scope", encodeJSON(preset.scope)},
        {"foldersOnly", preset.foldersOnly},
        {"namePatterns", encodeJSON(preset.namePatterns)},
        {"excludePatterns", encodeJSON(preset.excludePatterns)},
        {"pauseWhileRunning", encodeJSON(preset.pauseWhileRunning)},
        {"suggestedTriggers", encodeJSON(preset.suggestedTriggers)},
        {"regenerable", preset.regenerable},
        {"largeRedownload", preset.largeRedownload},
        {"recommended", preset.recommended},
        {"folders", encodeJSON(here.folders)},
    };
    if (preset.minAgeDays) fields.emplace_back("minAgeDays", encodeJSON(*preset.minAgeDays));
    return JSONObject(std::move(fields));
}

std::string shown(const PresetFolders& here, const PathGuards& guards) {
    std::vector<std::string> paths;
    for (const auto& folder : here.folders)
        paths.push_back(guards.displayPath(folder));
    return fmt::format("{}", fmt::join(paths, ", "));
}

void addRows(std::vector<Output::Row>& rows, const Preset& preset, const PresetFolders& here,
             const PathGuards& guards) {
    rows.push_back({{preset.id, Style::bold}, preset.name + ": " + preset.summary});
    if (!preset.reason.empty()) rows.push_back({"", {preset.reason, Style::dim}});
    auto limits = limitTexts(preset);
    if (preset.action == CleanupAction::deletePermanently)
        limits.emplace_back("deletes for good, unless told otherwise");
    if (!limits.empty()) rows.push_back({"", {fmt::format("{}", fmt::join(limits, "; ")), Style::dim}});
    if (!here.folders.empty()) rows.push_back({"", {shown(here, guards), Style::good}});
}

CommandResult listPresets(Session& session) {
    JSONArray listed;
    for (const Preset& preset : session.catalog.all())
        listed.push_back(documentOf(preset, PresetFolders::of(preset, session.resolver)));
    for (const auto& group : groups) {
        std::vector<Output::Row> rows;
        for (const Preset& preset : session.catalog.all()) {
            if (preset.group != group.group) continue;
            addRows(rows, preset, PresetFolders::of(preset, session.resolver), session.guards);
        }
        session.output.line({{group.shown, Style::bold}});
        session.output.table(rows, {Alignment::left, Alignment::left});
        session.output.line();
    }
    session.output.line({"Under each preset stand its folders that exist here. To make a rule of one:"});
    session.output.line({"  vostrel rule add NAME --preset ID"});
    return session.output.document(JSONObject{{"presets", std::move(listed)}});
}

}  // namespace

void addPresetsCommand(CLI::App& app, Command& chosen) {
    app.add_subcommand("presets", "The ready-made rules: what each cleans, why that is safe, and where it is here")
        ->fallthrough()
        ->callback([&chosen] { chosen = inSession(listPresets); });
}

}  // namespace vostrel::cli
