#pragma once

#include <CLI/CLI.hpp>

#include "cli/CommandLine.h"

namespace vostrel::cli {

/// Each group adds its commands to the command line; reading the line leaves the chosen one in `chosen`.

void addSpaceCommand(CLI::App& app, Command& chosen);
void addSettingsCommands(CLI::App& app, Command& chosen);
void addRuleCommands(CLI::App& app, Command& chosen);
void addPreviewCommand(CLI::App& app, Command& chosen);
void addCleanCommand(CLI::App& app, Command& chosen);
void addCleanNowCommand(CLI::App& app, Command& chosen);
void addLogCommand(CLI::App& app, Command& chosen);
void addMapCommand(CLI::App& app, Command& chosen);
void addFindCommand(CLI::App& app, Command& chosen);
void addPresetsCommand(CLI::App& app, Command& chosen);
void addAgentCommand(CLI::App& app, Command& chosen);
void addProbesCommand(CLI::App& app, Command& chosen);
void addAccessCommand(CLI::App& app, Command& chosen);
void addDemoCommand(CLI::App& app, Command& chosen);

}  // namespace vostrel::cli
