#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/Amounts.h"
#include "monitor/AppSettings.h"

namespace vostrel::cli {

/// What a value on the command line asks for.
struct SettingChange {
    std::function<void(AppSettings&)> apply;
    /// What was not taken as it was given, in whole sentences.
    std::vector<std::string> adjustments;
};

/// One setting by the name that it has on the command line.
struct NamedSetting {
    std::string_view key;
    std::string_view meaning;
    /// The setting in the words in which it can be given.
    std::string (*text)(const AppSettings& settings);
    /// Fails with what is accepted.
    Parsed<SettingChange> (*parse)(std::string_view value);
};

/// All settings, in the order in which they are shown.
[[nodiscard]] std::span<const NamedSetting> namedSettings();

}  // namespace vostrel::cli
