#pragma once

#include <vector>

#include "monitor/ReadoutStyle.h"
#include "monitor/SpaceLine.h"
#include "monitor/SuggestionCadence.h"

namespace vostrel {

/// What the user chose, and what holds until they do.
struct AppSettings {
    ReadoutStyle readoutStyle = ReadoutStyle::gigabytes;
    SpaceLine line = SpaceLine::gigabytes(20);
    std::vector<SpaceLine> alertLevels{SpaceLine::percent(20), SpaceLine::percent(10), SpaceLine::percent(5)};
    bool notificationsEnabled = true;
    /// How far above the line free space climbs before cleaning for low space starts afresh; held to its limits where
    /// it is used (`clampedHysteresis`). Alert levels have a margin of their own.
    double hysteresisGigabytes = 2;
    bool automaticCleaningPaused = false;
    SuggestionCadence suggestionCadence = SuggestionCadence::monthly;
    /// The file held a pause setting that could not be read. Never stored.
    bool pauseSettingUnreadable = false;

    friend bool operator==(const AppSettings&, const AppSettings&) = default;
};

inline constexpr double highestHysteresis = 1000;

/// Between 0 and 1000 GB; what is not a number is 0.
[[nodiscard]] constexpr double clampedHysteresis(double gigabytes) {
    if (!(gigabytes > 0)) return 0;
    return gigabytes < highestHysteresis ? gigabytes : highestHysteresis;
}

}  // namespace vostrel
