#include "rules/Preset.h"

#include <algorithm>
#include <utility>

#include "filesystem/ScreenshotName.h"
#include "rules/RuleFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {

bool Preset::cleansScreenshots() const {
    return std::ranges::any_of(
        sources, [](const PathSource& source) { return std::holds_alternative<ScreenshotFolderSource>(source); });
}

bool Preset::decidesNames() const {
    return !namePatterns.empty() || cleansScreenshots();
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
    std::vector<JSONMember> meaning{
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
    if (!namesInside.empty()) meaning.emplace_back("namesInside", encodeJSON(namesInside));
    if (cleansScreenshots()) meaning.emplace_back("screenshotNames", screenshotNames);
    return JSONCoding::encoder(JSONLayout::compact)
        .encode(JSONValue(JSONObject(std::move(meaning))))
        .value_or("unknown");
}

}  // namespace vostrel
