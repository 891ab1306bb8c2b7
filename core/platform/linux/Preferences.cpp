#include "platform/Preferences.h"

namespace vostrel {

PreferenceValue readPreference(const std::string& /*key*/, const std::string& /*domain*/) {
    return PreferenceMissing{};
}

}  // namespace vostrel
