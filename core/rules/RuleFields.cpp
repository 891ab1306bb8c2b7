#include "rules/RuleFields.h"

#include "rules/RuleSentences.h"

namespace vostrel {

namespace {

/// Drops blank patterns; what follows is whether the list said anything at all.
bool hadOnlyBlanks(std::vector<std::string>& patterns) {
    const bool wasEmpty = patterns.empty();
    std::erase_if(patterns, [](const std::string& pattern) { return trimmed(pattern).empty(); });
    return patterns.empty() && !wasEmpty;
}

}  // namespace

std::optional<std::string> JSONFields<PinnedFile>::settle(PinnedFile& pin) {
    if (!PinnedFile::isName(pin.name)) return "A pinned file's name is one component, in NFC.";
    return std::nullopt;
}

std::optional<std::string> JSONFields<RuleFilter>::settle(RuleFilter& filter) {
    if (filter.minAgeDays.value_or(0) < 0) return sentences::negativeAge;
    if (filter.minSizeBytes.value_or(0) < 0) return sentences::negativeSize;
    if (hadOnlyBlanks(filter.includeGlobs)) return "includeGlobs has only blank patterns.";
    hadOnlyBlanks(filter.excludeGlobs);
    const auto problems = filter.chosenFilesProblems();
    return problems.empty() ? std::nullopt : std::optional(problems.front());
}

std::expected<void, JSONError> JSONFields<RuleFilter>::decodePins(const JSONValue& value, void* filter) {
    auto pins = decodeJSON<std::vector<PinnedFile>>(value);
    if (!pins) return std::unexpected(std::move(pins.error()));
    if (pins->empty()) return jsonFault("pinnedFiles is empty.");
    static_cast<RuleFilter*>(filter)->pinnedFiles = std::move(*pins);
    return {};
}

std::optional<std::string> JSONFields<ApprovalKey>::settle(ApprovalKey& key) {
    const bool isWhole = !key.roots.empty() && !key.definition.empty();
    if (!key.rootFileID && !isWhole) return "The approval names no folders.";
    return std::nullopt;
}

std::optional<std::string> JSONFields<Rule>::settle(Rule& rule) {
    for (const std::string& entry : rule.pauseWhileRunning) {
        if (trimmed(entry) != entry) return sentences::spacesAroundPauseEntry(entry);
    }
    return std::nullopt;
}

}  // namespace vostrel
