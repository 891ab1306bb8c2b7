#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
#include "cli/CommandResult.h"
#include "rules/PresetCatalog.h"
#include "rules/Rule.h"

namespace vostrel::cli {

/// What "rule add" is told about the rule to be made.
struct RuleOptions {
    std::string name;
    std::optional<std::filesystem::path> folder;
    std::optional<std::string> preset;
    std::vector<std::filesystem::path> projectRoots;
    std::set<ArtifactKind> kinds;
    int untouchedDays = 0;
    /// What was said of ages, sizes and names.
    RuleFilter filter;
    std::optional<AgeBasis> basis;
    std::optional<RuleScope> scope;
    std::vector<std::filesystem::path> pins;
    std::optional<CleanupAction> action;
    bool disabled = false;
    std::vector<RuleTrigger> triggers;
    std::vector<std::string> pauseWhileRunning;

    void addTo(CLI::App& command);

    /// The rule as told, and what was not told of a preset's rule as the preset has it, but for the triggers: it only
    /// suggests those. Whether the rule makes sense is for its own validation to say. Fails when the line names no
    /// target or several, and when a chosen file cannot be looked up.
    [[nodiscard]] std::expected<Rule, Failure> rule(Date now, const PresetCatalog& catalog) const;

private:
    void limit(RuleFilter& made) const;
    void addTarget(CLI::App& command);
    void addFilter(CLI::App& command);
    void addAction(CLI::App& command);
    void addTriggers(CLI::App& command);
};

}  // namespace vostrel::cli
