#pragma once

#include <string_view>

namespace vostrel {

/// The application's reverse-DNS identifier: names its part of the system log and begins the labels of its queues.
inline constexpr std::string_view AppIdentifier = "app.vostrel.Vostrel";

}  // namespace vostrel
