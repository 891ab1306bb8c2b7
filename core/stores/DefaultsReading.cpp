#include "stores/DefaultsReading.h"

#include <fmt/format.h>

namespace vostrel {

DefaultsValue SystemDefaults::value(const std::string& key, const std::string& domain) const {
    return readPreference(key, domain);
}

std::string FixedDefaults::key(std::string_view domain, std::string_view key) {
    return fmt::format("{} {}", domain, key);
}

DefaultsValue FixedDefaults::value(const std::string& key, const std::string& domain) const {
    const auto found = values.find(FixedDefaults::key(domain, key));
    return found == values.end() ? PreferenceMissing{} : found->second;
}

}  // namespace vostrel
