#pragma once

#include <string>

namespace vostrel {

/// Shows the user a notification on the desktop. Whether it could be shown: where no desktop runs it cannot. Takes some
/// seconds at most. Safe on any thread.
[[nodiscard]] bool showNotification(const std::string& title, const std::string& body);

}  // namespace vostrel
