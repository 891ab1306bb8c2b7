#pragma once

#include <string>

#include "base/Date.h"

namespace vostrel {

/// A date as clocks and calendars show it where the machine is: "2025-03-03", "2025-03-03 09:05".
[[nodiscard]] std::string localDay(Date date);
[[nodiscard]] std::string localTime(Date date);

}  // namespace vostrel
