#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "rules/Preset.h"

namespace vostrel {

/// The presets that this version offers, in the order in which they are shown.
class PresetCatalog {
public:
    /// A catalogue without presets: every id is one that this version does not have.
    PresetCatalog() = default;
    explicit PresetCatalog(std::vector<Preset> presets) : list(std::move(presets)) {}

    [[nodiscard]] const std::vector<Preset>& all() const { return list; }
    /// The preset with that id, or null.
    [[nodiscard]] const Preset* preset(std::string_view id) const;

private:
    std::vector<Preset> list;
};

}  // namespace vostrel
