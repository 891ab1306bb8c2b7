#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "platform/SystemKind.h"
#include "rules/Preset.h"
#include "rules/RuleTarget.h"

namespace vostrel {

/// The presets that this version offers, in the order in which they are shown.
class PresetCatalog {
public:
    static constexpr std::string_view screenshotsID = "screenshots";
    static constexpr std::string_view oldTrashID = "old-trash";

    /// The presets as that system has them.
    [[nodiscard]] static PresetCatalog offered(SystemKind system = systemKind());

    /// A catalogue without presets: every id is one that this version does not have.
    PresetCatalog() = default;
    explicit PresetCatalog(std::vector<Preset> presets) : list(std::move(presets)) {}

    [[nodiscard]] const std::vector<Preset>& all() const { return list; }
    /// The preset with that id, or null.
    [[nodiscard]] const Preset* preset(std::string_view id) const;
    /// The preset that the target names, or null where it names none that there is.
    [[nodiscard]] const Preset* presetOf(const RuleTarget& target) const;

private:
    std::vector<Preset> list;
};

}  // namespace vostrel
