#include "rules/PresetCatalog.h"

#include <algorithm>

#include "rules/PresetRows.h"

namespace vostrel {

PresetCatalog PresetCatalog::offered(SystemKind system) {
    std::vector<Preset> presets = presetRows();
    if (system != SystemKind::linux) return PresetCatalog(std::move(presets));
    for (const PresetLinuxRow& row : presetLinuxRows()) {
        const auto preset = std::ranges::find(presets, row.id, &Preset::id);
        if (preset == presets.end()) continue;
        if (row.replacesSources) preset->sources.clear();
        std::ranges::copy(row.sources, std::back_inserter(preset->sources));
        std::ranges::copy(row.pauseWhileRunning, std::back_inserter(preset->pauseWhileRunning));
    }
    return PresetCatalog(std::move(presets));
}

const Preset* PresetCatalog::preset(std::string_view id) const {
    const auto found = std::ranges::find(list, id, &Preset::id);
    return found == list.end() ? nullptr : &*found;
}

const Preset* PresetCatalog::presetOf(const RuleTarget& target) const {
    const auto* named = std::get_if<PresetTarget>(&target);
    return named ? preset(named->id) : nullptr;
}

}  // namespace vostrel
