#include "access/SettingsPane.h"

#include <array>

namespace vostrel {

std::span<const std::string_view> addresses(SettingsPane pane) {
    static constexpr std::array<std::string_view, 2> fullDiskAccess{
        "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_AllFiles",
        "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"};
    switch (pane) {
        case SettingsPane::fullDiskAccess:
            return fullDiskAccess;
    }
    return {};
}

}  // namespace vostrel
