#pragma once

#include <cstdint>
#include <string>

namespace vostrel {

/// A count as people read it: "1,234,567".
[[nodiscard]] std::string grouped(std::int64_t count);

}  // namespace vostrel
