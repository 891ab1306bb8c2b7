#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Amounts as the user types and reads them in the settings: "20", "2.5".
namespace vostrel::AmountText {

/// The finite number that the text is, white space around it aside. A comma is taken for a point: "1,5" is 1.5.
[[nodiscard]] std::optional<double> parse(std::string_view text);

/// To one decimal.
[[nodiscard]] double rounded(double amount);

/// The rounded amount, without a fraction where it has none: "20", "2.5"; "inf" or "nan" for what is no amount.
[[nodiscard]] std::string format(double amount);

}  // namespace vostrel::AmountText
