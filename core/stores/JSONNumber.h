#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vostrel {

/// The texts of JSON numbers: their grammar, their canonical form, and what a text holds exactly.
///
/// Everything but `isNumberToken` takes a token of the grammar.

[[nodiscard]] bool isNumberToken(std::string_view text);

/// The one form in which a finite double is written: the fewest digits that read back to it, without an exponent from
/// 0.00001 up to, but not including, 10^16; a whole number has no fraction ("1", "1.5", "1e+22", "-0").
[[nodiscard]] std::string canonicalNumber(double value);

/// The double nearest to the number; nothing when it is beyond the largest one.
[[nodiscard]] std::optional<double> nearestDouble(std::string_view token);

/// Whether a decimal of 38 digits and an exponent of -128 to 127 holds the number exactly.
[[nodiscard]] bool fitsDecimal(std::string_view token);

/// The number in plain digits when it is whole and has at most 20 of them ("1.20e1" is "12").
[[nodiscard]] std::optional<std::string> integralText(std::string_view token);

}  // namespace vostrel
