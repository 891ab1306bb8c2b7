#pragma once

#include <array>

#include "monitor/AppSettings.h"
#include "monitor/SpaceLevel.h"
#include "stores/JSONCoder.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// How settings are stored.

template <>
struct JSONNames<ReadoutStyle> {
    static constexpr std::array list{
        JSONName{ReadoutStyle::gigabytes, "gigabytes"},
        JSONName{ReadoutStyle::percent, "percent"},
        JSONName{ReadoutStyle::bar, "bar"},
        JSONName{ReadoutStyle::iconOnly, "iconOnly"},
    };
};

template <>
struct JSONNames<SpaceLineUnit> {
    static constexpr std::array list{
        JSONName{SpaceLineUnit::gigabytes, "gigabytes"},
        JSONName{SpaceLineUnit::percent, "percent"},
    };
};

template <>
struct JSONNames<SpaceLevel> {
    static constexpr std::array list{
        JSONName{SpaceLevel::normal, "normal"},
        JSONName{SpaceLevel::low, "low"},
        JSONName{SpaceLevel::critical, "critical"},
    };
};

template <>
struct JSONNames<SuggestionCadence> {
    static constexpr std::array list{
        JSONName{SuggestionCadence::weekly, "weekly"},
        JSONName{SuggestionCadence::monthly, "monthly"},
        JSONName{SuggestionCadence::off, "off"},
    };
};

/// {"unit", "value"}. A value beyond the limits reads as the limit.
template <>
struct JSONCoder<SpaceLine> {
    static JSONValue encode(const SpaceLine& line);
    static Decoded<SpaceLine> decode(const JSONValue& value);
};

/// Read key by key: what is absent or cannot be read has its default, and of the alert levels each that cannot be read
/// is dropped alone. Only a pause setting that is there and is no boolean means paused, for it may have said so.
template <>
struct JSONCoder<AppSettings> {
    static JSONValue encode(const AppSettings& settings);
    static Decoded<AppSettings> decode(const JSONValue& value);
};

}  // namespace vostrel
