#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "rules/PathSource.h"
#include "rules/Preset.h"

namespace vostrel {

/// The table of presets, the same on every system, in the order in which they are shown.
[[nodiscard]] const std::vector<Preset>& presetRows();

/// What Linux adds to a preset: where the same tool keeps the same data there, and the desktop ids of its applications.
struct PresetLinuxRow {
    std::string_view id;
    std::vector<PathSource> sources;
    std::vector<std::string> pauseWhileRunning;
    /// The places of the table mean something else there: only these are the preset's.
    bool replacesSources = false;
};

[[nodiscard]] const std::vector<PresetLinuxRow>& presetLinuxRows();

}  // namespace vostrel
