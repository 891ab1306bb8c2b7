#include "monitor/AmountText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

#include "base/UnicodeText.h"

namespace vostrel::AmountText {

std::optional<double> parse(std::string_view text) {
    std::string number(trimmed(text));
    std::ranges::replace(number, ',', '.');
    // Standard libraries differ in what else they take for a number: hexadecimal ones, "inf".
    if (number.empty() || number.find_first_not_of("0123456789.+-eE") != std::string::npos) return std::nullopt;
    std::istringstream stream(number);
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    const bool isWhole = !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
    return isWhole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

double rounded(double amount) {
    return std::round(amount * 10) / 10;
}

std::string format(double amount) {
    if (std::isnan(amount)) return "nan";
    if (std::isinf(amount)) return amount < 0 ? "-inf" : "inf";
    const double shown = rounded(amount);
    if (shown == 0) return "0";  // a negative zero too
    return shown == std::trunc(shown) ? fmt::format("{:.0f}", shown) : fmt::format("{:.1f}", shown);
}

}  // namespace vostrel::AmountText
