#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Date.h"
#include "filesystem/MeasuredItem.h"
#include "rules/Preset.h"
#include "rules/PresetNames.h"

namespace vostrel {

/// What a preset holds the items of its rules to, whatever the rules say: its names and its age.
class PresetItems {
public:
    /// The preset outlives the object. Fails with the sentence about a name pattern that is not valid.
    [[nodiscard]] static std::expected<PresetItems, std::string> of(const Preset& preset, std::filesystem::path home);

    /// Whether the tool gives such names to what the preset cleans.
    [[nodiscard]] bool recognises(std::string_view name) const { return names.isEmpty() || names.matchesAny(name); }
    /// Whether the preset passes over items of that name and type without a word.
    [[nodiscard]] bool keeps(std::string_view name, EntryType type) const;

    /// The sentence about an item in which the tool keeps what is the user's, or that holds what the tool does not put
    /// there; nothing about any other. Asks the disk.
    [[nodiscard]] std::optional<std::string> refusal(const std::filesystem::path& item) const;

    /// Whether the preset lets an item of that age go at the date `now`. Asks the disk when the tool was used last,
    /// where the preset says how to tell.
    [[nodiscard]] bool letsGo(const MeasuredItem& item, const std::filesystem::path& path, Date now) const;

private:
    PresetItems(const Preset& ofPreset, std::filesystem::path inHome, PresetNames cleaned, PresetNames spared,
                PresetNames ofTool)
        : preset(&ofPreset),
          home(std::move(inHome)),
          names(std::move(cleaned)),
          kept(std::move(spared)),
          inside(std::move(ofTool)) {}

    const Preset* preset;
    std::filesystem::path home;
    PresetNames names;
    PresetNames kept;
    PresetNames inside;
};

/// Whether something dated so is that many days old; anything is when no age is wanted.
[[nodiscard]] bool isOldEnough(Date date, std::optional<int> days, Date now);

}  // namespace vostrel
