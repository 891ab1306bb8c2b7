#include "rules/RuleTarget.h"

#include <fmt/format.h>

#include "base/Visit.h"
#include "rules/ArtifactFacts.h"
#include "rules/PresetCatalog.h"
#include "rules/ProjectScanner.h"
#include "rules/RuleFields.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

std::string compactJSON(const JSONObject& object) {
    return JSONCoding::encoder(JSONLayout::compact).encode(JSONValue(object)).value_or("unknown");
}

std::string presetDefinition(const PresetTarget& target, const PresetCatalog& catalog) {
    const Preset* preset = catalog.preset(target.id);
    return "preset:" + target.id + ";" + (preset ? preset->definition() : "unknown");
}

std::string projectScanDefinition(const ProjectScanTarget& target) {
    std::vector<JSONMember> kinds;
    kinds.reserve(target.kinds.size());
    for (const ArtifactKind kind : target.kinds)
        kinds.emplace_back(std::string(namesOf(kind).storedName), factsOf(kind).definition());
    return fmt::format("projectScan;depth {};sources {};{}", ProjectScanner::discoveryDepth,
                       ProjectScanner::sourceWalkDepth, compactJSON(JSONObject(std::move(kinds))));
}

}  // namespace

std::string definition(const RuleTarget& target, const PresetCatalog& catalog) {
    return visit(
        target, [](const FolderTarget&) -> std::string { return "folder"; },
        [&](const PresetTarget& preset) { return presetDefinition(preset, catalog); },
        [](const ProjectScanTarget& scan) { return projectScanDefinition(scan); });
}

}  // namespace vostrel
