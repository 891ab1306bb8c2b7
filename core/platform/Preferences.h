#pragma once

#include <string>
#include <variant>

namespace vostrel {

struct PreferenceMissing {
    friend bool operator==(PreferenceMissing, PreferenceMissing) = default;
};

/// There is a value, but no string.
struct PreferenceOther {
    friend bool operator==(PreferenceOther, PreferenceOther) = default;
};

using PreferenceValue = std::variant<PreferenceMissing, PreferenceOther, std::string>;

/// What an application keeps under a key in its preference domain, as it stands now. Where the system has no such
/// preferences, every key is missing. Any thread.
[[nodiscard]] PreferenceValue readPreference(const std::string& key, const std::string& domain);

}  // namespace vostrel
