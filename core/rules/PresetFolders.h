#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "rules/PresetCatalog.h"
#include "rules/RuleTarget.h"

namespace vostrel {

class TargetResolver;

/// The folders of a preset that exist here.
struct PresetFolders {
    std::string id;
    std::string name;
    std::vector<std::filesystem::path> folders;

    /// Asks the disk about each place of the preset. There are none where a setting that names them cannot be trusted.
    [[nodiscard]] static PresetFolders of(const Preset& preset, const TargetResolver& resolver);

    friend bool operator==(const PresetFolders&, const PresetFolders&) = default;
};

/// The kind of cleaning that a rule does, by which views group rules.
enum class CleanupCategory { regenerable, projectArtifacts, userFolders };

[[nodiscard]] CleanupCategory cleanupCategory(const RuleTarget& target, const PresetCatalog& catalog);

}  // namespace vostrel
