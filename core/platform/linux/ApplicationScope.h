#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vostrel::linux_platform {

/// The desktop id of the application to which a process belongs, by the text of its /proc/PID/cgroup: session managers
/// start each application in a unit "app-[LAUNCHER-]ID-RANDOM.scope" or "app-[LAUNCHER-]ID[@RANDOM].service", with "-"
/// inside the id written "\x2d". Nothing for a process of no application.
[[nodiscard]] std::optional<std::string> applicationOfGroups(std::string_view groups);

/// The name under which a ".desktop" file shows its application, without translations.
[[nodiscard]] std::optional<std::string> nameInDesktopEntry(std::string_view entry);

}  // namespace vostrel::linux_platform
