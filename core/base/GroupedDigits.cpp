#include "base/GroupedDigits.h"

namespace vostrel {

std::string grouped(std::int64_t count) {
    std::string digits = std::to_string(count);
    const std::size_t first = digits.starts_with('-') ? 1 : 0;
    for (std::size_t at = digits.size(); at > first + 3;) {
        at -= 3;
        digits.insert(at, ",");
    }
    return digits;
}

}  // namespace vostrel
