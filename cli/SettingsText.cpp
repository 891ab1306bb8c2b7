#include "cli/SettingsText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <utility>
#include <vector>

#include "base/UnicodeText.h"
#include "cli/StoredWord.h"
#include "monitor/AmountText.h"
#include "monitor/AppSettingsFields.h"
#include "monitor/SpaceSentences.h"

namespace vostrel::cli {

namespace {

constexpr const char* lineNeeded = "an amount such as 20GB, or a share of the disk such as 10%, is needed";

/// An amount beyond the limits becomes the limit, one with more decimals than are ever shown is rounded.
Parsed<SpaceLine> parseLine(std::string_view text, std::vector<std::string>& adjustments) {
    const auto given = trimmed(text);
    const auto isUnit = [&](std::string_view unit) { return folded(given).ends_with(unit); };
    const bool isPercent = isUnit("%");
    if (!isPercent && !isUnit("gb")) return std::unexpected(lineNeeded);
    const auto amount = AmountText::parse(given.substr(0, given.size() - (isPercent ? 1 : 2)));
    if (!amount) return std::unexpected(lineNeeded);

    const auto unit = isPercent ? SpaceLineUnit::percent : SpaceLineUnit::gigabytes;
    const SpaceLine line(unit, AmountText::rounded(*amount));
    if (line.value() != *amount) {
        adjustments.push_back(
            fmt::format("\"{}\" is taken as {}: an amount lies between {} and {} and has one decimal at most.", given,
                        SpaceSentences::text(line), SpaceSentences::text({unit, SpaceLine::lowest}),
                        SpaceSentences::text({unit, SpaceLine::highest(unit)})));
    }
    return line;
}

Parsed<SettingChange> parseTheLine(std::string_view text) {
    SettingChange change;
    const auto line = parseLine(text, change.adjustments);
    if (!line) return std::unexpected(line.error());
    change.apply = [line = *line](AppSettings& settings) { settings.line = line; };
    return change;
}

std::string levelsText(const AppSettings& settings) {
    std::vector<std::string> texts;
    for (const SpaceLine& level : settings.alertLevels)
        texts.push_back(SpaceSentences::text(level));
    return texts.empty() ? "none" : fmt::format("{}", fmt::join(texts, ", "));
}

Parsed<SettingChange> parseLevels(std::string_view text) {
    SettingChange change;
    std::vector<SpaceLine> levels;
    bool isLast = trimmed(text) == "none";
    while (!isLast) {
        const auto comma = text.find(',');
        const auto level = parseLine(text.substr(0, comma), change.adjustments);
        if (!level) return std::unexpected("a list such as 20%,10%,50GB, or none, is needed");
        levels.push_back(*level);
        isLast = comma == std::string_view::npos;
        text.remove_prefix(isLast ? text.size() : comma + 1);
    }
    change.apply = [levels = std::move(levels)](AppSettings& settings) { settings.alertLevels = levels; };
    return change;
}

std::string hysteresisText(const AppSettings& settings) {
    return AmountText::format(clampedHysteresis(settings.hysteresisGigabytes)) + " GB";
}

Parsed<SettingChange> parseHysteresis(std::string_view text) {
    const auto given = trimmed(text);
    const bool namesUnit = folded(given).ends_with("gb");
    const auto amount = AmountText::parse(given.substr(0, given.size() - (namesUnit ? 2 : 0)));
    if (!amount) return std::unexpected("a number of gigabytes such as 2 or 2.5GB is needed");
    SettingChange change;
    const double hysteresis = clampedHysteresis(AmountText::rounded(*amount));
    change.apply = [hysteresis](AppSettings& settings) { settings.hysteresisGigabytes = hysteresis; };
    if (hysteresis != *amount) {
        change.adjustments.push_back(
            fmt::format("\"{}\" is taken as {} GB: it lies between 0 GB and {} GB and has one decimal at most.", given,
                        AmountText::format(hysteresis), AmountText::format(highestHysteresis)));
    }
    return change;
}

Parsed<bool> parseSwitch(std::string_view text) {
    const auto word = folded(trimmed(text));
    if (word == "yes" || word == "on" || word == "true") return true;
    if (word == "no" || word == "off" || word == "false") return false;
    return std::unexpected("yes or no, on or off, true or false is needed");
}

template <auto member>
Parsed<SettingChange> parseSwitchOf(std::string_view text) {
    const auto on = parseSwitch(text);
    if (!on) return std::unexpected(on.error());
    return SettingChange{.apply = [on = *on](AppSettings& settings) { settings.*member = on; }, .adjustments = {}};
}

template <auto member>
std::string wordOf(const AppSettings& settings) {
    return *encodeJSON(settings.*member).template as<std::string>();
}

template <auto member>
Parsed<SettingChange> parseWordOf(std::string_view text) {
    const auto word = parseWord<typename json::MemberOf<decltype(member)>::MemberType>(trimmed(text));
    if (!word) return std::unexpected(word.error());
    return SettingChange{.apply = [word = *word](AppSettings& settings) { settings.*member = word; },
                         .adjustments = {}};
}

constexpr std::array settings{
    NamedSetting{"line", "free space that you want kept, in GB or in percent of the disk",
                 [](const AppSettings& all) { return SpaceSentences::text(all.line); }, parseTheLine},
    NamedSetting{"alertLevels", "free space below which you are told once", levelsText, parseLevels},
    NamedSetting{"notifications", "whether you are told at all",
                 [](const AppSettings& all) { return std::string(all.notificationsEnabled ? "on" : "off"); },
                 parseSwitchOf<&AppSettings::notificationsEnabled>},
    NamedSetting{"paused", "whether automatic cleaning is paused",
                 [](const AppSettings& all) { return std::string(all.automaticCleaningPaused ? "yes" : "no"); },
                 parseSwitchOf<&AppSettings::automaticCleaningPaused>},
    NamedSetting{"hysteresis", "how far above the line free space counts as recovered", hysteresisText,
                 parseHysteresis},
    NamedSetting{"cadence", "how often you are told what could be freed: weekly, monthly or off",
                 wordOf<&AppSettings::suggestionCadence>, parseWordOf<&AppSettings::suggestionCadence>},
    NamedSetting{"readout", "what the menu bar shows: gigabytes, percent, bar or iconOnly",
                 wordOf<&AppSettings::readoutStyle>, parseWordOf<&AppSettings::readoutStyle>},
};

}  // namespace

std::span<const NamedSetting> namedSettings() {
    return settings;
}

}  // namespace vostrel::cli
