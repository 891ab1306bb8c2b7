#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <span>
#include <string_view>

#include "cli/Commands.h"

namespace vostrel::cli {

namespace {

constexpr const char* summary =
    "Keeps the startup disk from filling up. It removes only what it has shown and what you have approved,\n"
    "and leaves alone whatever changed since.";

void addGlobalOptions(CLI::App& app, GlobalOptions& options) {
    app.add_option("--home", options.home, "The home folder to act in (default: your own)")->type_name("DIR");
    app.add_option("--data", options.data, "Where rules and records are kept (default: the system's place for them)")
        ->type_name("DIR");
    app.add_flag("--json", options.json, "Print one JSON document");
    app.add_flag("--no-progress", options.noProgress, "Draw no progress line");
    app.set_version_flag("--version", "vostrel " VOSTREL_VERSION);
}

/// The innermost command that the line names, whose help is the one to show.
const CLI::App& innermost(const CLI::App& app) {
    const auto named = app.get_subcommands();
    return named.empty() ? app : innermost(*named.front());
}

std::string nameOf(const CLI::App& app) {
    const CLI::App* parent = app.get_parent();
    return parent == nullptr ? app.get_name() : nameOf(*parent) + " " + app.get_name();
}

WrongCommandLine wrong(const CLI::App& app, const std::string& problem, bool json) {
    return {problem + ". \"" + nameOf(innermost(app)) + " --help\" tells what it takes.", json};
}

bool asksForJSON(std::span<const char* const> arguments) {
    return std::ranges::find(arguments, std::string_view("--json")) != arguments.end();
}

}  // namespace

CommandLine readCommandLine(int count, const char* const* arguments) {
    const bool json = asksForJSON({arguments, static_cast<std::size_t>(count)});
    CLI::App app(summary, "vostrel");
    Request request;
    addGlobalOptions(app, request.options);
    addSpaceCommand(app, request.command);
    addSettingsCommands(app, request.command);
    addPresetsCommand(app, request.command);
    addRuleCommands(app, request.command);
    addPreviewCommand(app, request.command);
    addCleanCommand(app, request.command);
    addCleanNowCommand(app, request.command);
    addLogCommand(app, request.command);
    addMapCommand(app, request.command);
    addFindCommand(app, request.command);
    addAgentCommand(app, request.command);
    addProbesCommand(app, request.command);
    addAccessCommand(app, request.command);
    addDemoCommand(app, request.command);
    app.require_subcommand(0, 1);
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        return Answer{app.help()};
    } catch (const CLI::CallForVersion& version) {
        return Answer{version.what() + std::string("\n")};
    } catch (const CLI::ParseError& problem) {
        return wrong(app, problem.what(), json);
    }
    if (!request.command) return wrong(app, "A command is missing", json);
    return request;
}

}  // namespace vostrel::cli
