#include "rules/PresetFolders.h"

#include <system_error>

#include "rules/TargetResolver.h"

namespace vostrel {

PresetFolders PresetFolders::of(const Preset& preset, const TargetResolver& resolver) {
    PresetFolders found{preset.id, preset.name, {}};
    const auto roots = resolver.resolve(preset);
    if (!roots) return found;
    for (const ResolvedRoot& root : *roots) {
        std::error_code unknown;
        if (std::filesystem::is_directory(root.url, unknown)) found.folders.push_back(root.url);
    }
    return found;
}

CleanupCategory cleanupCategory(const RuleTarget& target, const PresetCatalog& catalog) {
    if (std::holds_alternative<ProjectScanTarget>(target)) return CleanupCategory::projectArtifacts;
    const Preset* preset = catalog.presetOf(target);
    return preset && preset->regenerable ? CleanupCategory::regenerable : CleanupCategory::userFolders;
}

}  // namespace vostrel
