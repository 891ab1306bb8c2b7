#include "probes/MemoryAmount.h"

#include <cmath>

namespace vostrel {

namespace {

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

/// Takes the digits in front away; how many there were.
int takeDigits(std::string_view& text, double& number) {
    int count = 0;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1), ++count)
        number = number * 10 + (text.front() - '0');
    return count;
}

}  // namespace

std::optional<std::int64_t> parseMemoryAmount(std::string_view text) {
    constexpr std::string_view units = "BKMGT";
    constexpr int bitsOfUnit = 10;
    constexpr double beyond64Bits = 0x1p63;
    double digits = 0;  // all of them; no tool prints more than a double holds exactly
    if (takeDigits(text, digits) == 0) return std::nullopt;
    int decimals = 0;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        decimals = takeDigits(text, digits);
        if (decimals == 0) return std::nullopt;
    }
    int unit = 0;
    if (!text.empty()) {
        const auto place = units.find(text.front());
        if (text.size() > 1 || place == std::string_view::npos) return std::nullopt;
        unit = static_cast<int>(place);
    }
    const double bytes = std::round(std::ldexp(digits / std::pow(10, decimals), unit * bitsOfUnit));
    // Not a number, where digits and decimals are both endless, is not below it either.
    if (!(bytes < beyond64Bits)) return std::nullopt;
    return static_cast<std::int64_t>(bytes);
}

}  // namespace vostrel
