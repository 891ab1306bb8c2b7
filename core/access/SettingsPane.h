#pragma once

#include <span>
#include <string_view>

namespace vostrel {

/// A pane of System Settings that the user may be sent to.
enum class SettingsPane { fullDiskAccess };

/// The addresses that open it: the present one first, then the one of older systems.
[[nodiscard]] std::span<const std::string_view> addresses(SettingsPane pane);

}  // namespace vostrel
