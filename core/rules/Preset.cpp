#include "rules/Preset.h"

#include <algorithm>

#include "rules/RuleFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {

bool Preset::decidesNames() const {
    return !namePatterns.empty() || std::ranges::any_of(sources, [](const PathSource& source) {
        return std::holds_alternative<ScreenshotFolderSource>(source);
    });
}

Rule Preset::draftRule(Date createdAt) const {
    Rule rule;
    rule.id = Uuid::random();
    rule.name = name;
    rule.target = PresetTarget{id};
    rule.filter.minAgeDays = minAgeDays;
    rule.filter.ageBasis = ageBasis;
    rule.filter.scope = scope;
    rule.action = action;
    rule.triggers = suggestedTriggers;
    rule.pauseWhileRunning = pauseWhileRunning;
    rule.createdAt = createdAt;
    return rule;
}

std::string Preset::definition() const {
    const JSONObject meaning{
        {"ageBasis", encodeJSON(ageBasis)},
        {"excludePatterns", encodeJSON(excludePatterns)},
        {"foldersOnly", encodeJSON(foldersOnly)},
        {"minAgeDays", encodeJSON(minAgeDays)},
        {"namePatterns", encodeJSON(namePatterns)},
        {"scope", encodeJSON(scope)},
        {"semanticsRevision", encodeJSON(semanticsRevision)},
        {"sources", encodeJSON(sources)},
        {"trashOnly", encodeJSON(trashOnly)},
        {"usedBeside", encodeJSON(usedBeside)},
        {"historyInside", encodeJSON(historyInside)},
    };
    return JSONCoding::encoder(JSONLayout::compact).encode(JSONValue(meaning)).value_or("unknown");
}

}  // namespace vostrel
