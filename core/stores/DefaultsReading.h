#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>

#include "platform/Preferences.h"

namespace vostrel {

/// A setting of another application: its string, or that it is missing or something else than a string.
using DefaultsValue = PreferenceValue;

/// Reads single settings of other applications (where screenshots go, say), by domain and key.
class DefaultsReading {
public:
    DefaultsReading() = default;
    DefaultsReading(const DefaultsReading&) = delete;
    DefaultsReading& operator=(const DefaultsReading&) = delete;
    virtual ~DefaultsReading() = default;

    [[nodiscard]] virtual DefaultsValue value(const std::string& key, const std::string& domain) const = 0;
};

/// The system's real preferences. Any thread.
class SystemDefaults final : public DefaultsReading {
public:
    [[nodiscard]] DefaultsValue value(const std::string& key, const std::string& domain) const override;
};

/// Fixed answers, for tests and previews; what is not listed is missing.
class FixedDefaults final : public DefaultsReading {
public:
    explicit FixedDefaults(std::map<std::string, DefaultsValue> answers) : values(std::move(answers)) {}

    /// How an answer is listed: the domain, one space, the key.
    [[nodiscard]] static std::string key(std::string_view domain, std::string_view key);
    [[nodiscard]] DefaultsValue value(const std::string& key, const std::string& domain) const override;

private:
    std::map<std::string, DefaultsValue> values;
};

}  // namespace vostrel
