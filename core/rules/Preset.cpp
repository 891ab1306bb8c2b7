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

std::string Preset::definition() const {
    const JSONObject meaning{
        {"ageBasis", encodeJSON(ageBasis)},     {"excludePatterns", encodeJSON(excludePatterns)},
        {"minAgeDays", encodeJSON(minAgeDays)}, {"namePatterns", encodeJSON(namePatterns)},
        {"scope", encodeJSON(scope)},           {"semanticsRevision", encodeJSON(semanticsRevision)},
        {"sources", encodeJSON(sources)},       {"trashOnly", encodeJSON(trashOnly)},
    };
    return JSONCoding::encoder(JSONLayout::compact).encode(JSONValue(meaning)).value_or("unknown");
}

}  // namespace vostrel
