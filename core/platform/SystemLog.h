#pragma once

#include <string_view>

namespace vostrel {

/// Writes to the system's log, under the application's identifier and a category of it ("Log"). Never fails; any
/// thread. Messages may name the user's files.
void logError(std::string_view category, std::string_view message);
void logNotice(std::string_view category, std::string_view message);

}  // namespace vostrel
