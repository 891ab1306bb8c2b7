#include "monitor/AppSettingsFields.h"

namespace vostrel {

namespace {

constexpr const char* pausedKey = "automaticCleaningPaused";

struct StoredLine {
    SpaceLineUnit unit = SpaceLineUnit::gigabytes;
    double value = 0;
};

}  // namespace

template <>
struct JSONFields<StoredLine> {
    static constexpr std::array list{
        jsonField<&StoredLine::unit>("unit"),
        jsonField<&StoredLine::value>("value"),
    };
};

template <>
struct JSONFields<AppSettings> {
    static constexpr std::array list{
        jsonField<&AppSettings::readoutStyle, JSONReading::lenient>("readoutStyle"),
        jsonField<&AppSettings::line, JSONReading::lenient>("line"),
        jsonField<&AppSettings::alertLevels, JSONReading::eachReadable>("alertLevels"),
        jsonField<&AppSettings::notificationsEnabled, JSONReading::lenient>("notificationsEnabled"),
        jsonField<&AppSettings::hysteresisGigabytes, JSONReading::lenient>("hysteresisGigabytes"),
        jsonField<&AppSettings::automaticCleaningPaused, JSONReading::lenient>(pausedKey),
        jsonField<&AppSettings::suggestionCadence, JSONReading::lenient>("suggestionCadence"),
    };
};

JSONValue JSONCoder<SpaceLine>::encode(const SpaceLine& line) {
    return encodeJSON(StoredLine{line.unit(), line.value()});
}

Decoded<SpaceLine> JSONCoder<SpaceLine>::decode(const JSONValue& value) {
    const auto stored = decodeJSON<StoredLine>(value);
    if (!stored) return std::unexpected(stored.error());
    return SpaceLine(stored->unit, stored->value);
}

JSONValue JSONCoder<AppSettings>::encode(const AppSettings& settings) {
    return json::encodeFields(&settings, JSONFields<AppSettings>::list, std::nullopt);
}

Decoded<AppSettings> JSONCoder<AppSettings>::decode(const JSONValue& value) {
    AppSettings settings;
    if (auto read = json::decodeFields(value, &settings, JSONFields<AppSettings>::list); !read)
        return std::unexpected(std::move(read).error());
    const JSONValue* const paused = value.as<JSONObject>()->find(pausedKey);
    if (paused != nullptr && paused->as<bool>() == nullptr) {
        settings.automaticCleaningPaused = true;
        settings.pauseSettingUnreadable = true;
    }
    return settings;
}

}  // namespace vostrel
