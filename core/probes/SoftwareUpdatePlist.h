#pragma once

#include <optional>
#include <string_view>

#include "probes/ProbeResults.h"

namespace vostrel::SoftwareUpdatePlist {

/// Where macOS records its last check for updates.
inline constexpr std::string_view path = "/Library/Preferences/com.apple.SoftwareUpdate.plist";

/// What that file's bytes say. An update without a name goes by its identifier, or else its product key; what has none
/// of them is left out. Nothing when the bytes are no such record.
[[nodiscard]] std::optional<UpdatePlistInfo> parse(std::string_view bytes);

}  // namespace vostrel::SoftwareUpdatePlist
