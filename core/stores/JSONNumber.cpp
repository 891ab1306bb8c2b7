#include "stores/JSONNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <locale>
#include <sstream>

namespace vostrel {

namespace {

constexpr bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

/// Takes the digits at the front of `rest`.
std::string_view takeDigits(std::string_view& rest) {
    const auto count = static_cast<std::size_t>(std::ranges::find_if_not(rest, isDigit) - rest.begin());
    const auto digits = rest.substr(0, count);
    rest.remove_prefix(count);
    return digits;
}

bool takeOne(std::string_view& rest, std::string_view choices) {
    if (rest.empty() || !choices.contains(rest.front())) return false;
    rest.remove_prefix(1);
    return true;
}

/// A number taken apart: ±digits × 10^exponent, where the digits neither begin nor end with 0; zero has none.
struct DecimalShape {
    bool negative = false;
    std::string digits;
    std::int64_t exponent = 0;
};

std::int64_t exponentOf(std::string_view text) {
    constexpr std::int64_t beyondAnything = INT64_MAX / 4;
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (parsed.ec != std::errc()) value = beyondAnything;
    value = std::min(value, beyondAnything);
    return negative ? -value : value;
}

DecimalShape shapeOf(std::string_view token) {
    DecimalShape shape;
    shape.negative = takeOne(token, "-");
    shape.digits = takeDigits(token);
    if (takeOne(token, ".")) {
        const auto fraction = takeDigits(token);
        shape.digits += fraction;
        shape.exponent = -static_cast<std::int64_t>(fraction.size());
    }
    if (takeOne(token, "eE")) shape.exponent += exponentOf(token);
    const auto last = shape.digits.find_last_not_of('0');
    if (last == std::string::npos) return {shape.negative, {}, 0};
    shape.exponent += static_cast<std::int64_t>(shape.digits.size() - last - 1);
    shape.digits.resize(last + 1);
    shape.digits.erase(0, shape.digits.find_first_not_of('0'));
    return shape;
}

}  // namespace

bool isNumberToken(std::string_view text) {
    takeOne(text, "-");
    const auto whole = takeDigits(text);
    if (whole.empty() || (whole.size() > 1 && whole.front() == '0')) return false;
    if (takeOne(text, ".") && takeDigits(text).empty()) return false;
    if (takeOne(text, "eE")) {
        takeOne(text, "+-");
        if (takeDigits(text).empty()) return false;
    }
    return text.empty();
}

std::string canonicalNumber(double value) {
    const double size = std::abs(value);
    const bool plain = size == 0 || (size >= 1e-5 && size < 1e16);
    std::array<char, 64> text{};
    const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value, format);
    return {text.data(), written.ptr};
}

std::optional<double> nearestDouble(std::string_view token) {
    // Neither simdjson's reading (wrong beyond 19 digits) nor strtod (the locale's point) nor from_chars (not in every
    // standard library yet) will do.
    std::istringstream stream{std::string(token)};
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    const bool isTooLarge = stream.fail() && std::abs(value) > 1;  // some libraries also report the smallest ones
    return isTooLarge ? std::nullopt : std::optional(value);
}

bool fitsDecimal(std::string_view token) {
    constexpr std::size_t mostDigits = 38;
    constexpr std::int64_t lowestExponent = -128;
    constexpr std::int64_t highestExponent = 127;
    const auto [negative, digits, exponent] = shapeOf(token);
    if (digits.size() > mostDigits || exponent < lowestExponent) return false;
    // Digits that are left over can take zeros, which lowers the exponent.
    return exponent - static_cast<std::int64_t>(mostDigits - digits.size()) <= highestExponent;
}

std::optional<std::string> integralText(std::string_view token) {
    constexpr std::int64_t mostDigits = 20;
    auto [negative, digits, exponent] = shapeOf(token);
    if (digits.empty()) return "0";
    if (exponent < 0 || static_cast<std::int64_t>(digits.size()) + exponent > mostDigits) return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    return negative ? "-" + digits : digits;
}

}  // namespace vostrel
