#include "platform/SHA256.h"

namespace vostrel {

std::string SHA256Digest::text() const {
    constexpr char digits[] = "0123456789abcdef";
    std::string hexadecimal;
    for (const std::uint8_t byte : bytes)
        hexadecimal += {digits[byte >> 4], digits[byte & 0xF]};
    return hexadecimal;
}

}  // namespace vostrel
