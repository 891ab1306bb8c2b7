#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Glob.h"
#include "filesystem/AgeBasis.h"
#include "rules/PinnedFile.h"
#include "rules/RuleScope.h"

namespace vostrel {

/// Which items of a target qualify. An absent limit limits nothing; the default filter lets every top-level item pass.
struct RuleFilter {
    class CompiledGlobs;

    std::optional<int> minAgeDays;
    AgeBasis ageBasis = AgeBasis::modified;
    std::optional<std::int64_t> minSizeBytes;
    /// Name patterns: when there are any, only matching names qualify.
    std::vector<std::string> includeGlobs;
    /// Name patterns that are never taken and that protect a folder holding them.
    std::vector<std::string> excludeGlobs;
    RuleScope scope = RuleScope::topLevelItems;
    /// The files that a rule for chosen files takes; empty for every other rule.
    std::vector<PinnedFile> pinnedFiles;

    /// Whether a file may be taken as far as the chosen files say: it is one of them, or none were chosen.
    [[nodiscard]] bool pinsAllow(std::string_view name, std::uint64_t inode, std::string_view volumeUUID) const;

    /// Whether it limits items by age, size or name at all.
    [[nodiscard]] bool picksByAgeSizeOrName() const;

    /// What is wrong with the chosen files, as sentences.
    [[nodiscard]] std::vector<std::string> chosenFilesProblems() const;

    friend bool operator==(const RuleFilter&, const RuleFilter&) = default;
};

/// Both pattern lists of a filter, compiled once for a whole plan.
class RuleFilter::CompiledGlobs {
public:
    /// The lists, or the sentence about the first pattern that is not valid: such a filter cannot be held to.
    [[nodiscard]] static std::expected<CompiledGlobs, std::string> compile(const RuleFilter& filter);

    [[nodiscard]] bool passes(std::string_view name) const { return Glob::passes(name, include, exclude); }
    [[nodiscard]] bool excludes(std::string_view name) const { return exclude.matchesAny(name); }

private:
    Glob::Patterns include;
    Glob::Patterns exclude;
};

}  // namespace vostrel
