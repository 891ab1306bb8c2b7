#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "rules/RuleTrigger.h"

namespace vostrel::cli {

/// How numbers, sizes and times are written on the command line. Each fails with what is expected instead.

template <class Value>
using Parsed = std::expected<Value, std::string>;

/// A whole number in decimal digits.
[[nodiscard]] Parsed<int> parseCount(std::string_view text);
[[nodiscard]] Parsed<int> parseCountFromOne(std::string_view text);

/// "4096" (bytes), "500MB", "1.5 GB": a number, with a decimal unit from kB to PB or without.
[[nodiscard]] Parsed<std::int64_t> parseSize(std::string_view text);

/// "09:05". Hours and minutes that do not exist are read; the rule's own validation tells of them.
[[nodiscard]] Parsed<DailyTrigger> parseTimeOfDay(std::string_view text);

/// "monday@09:05" or "2@09:05"; 1 is Sunday. Days that do not exist are read too.
[[nodiscard]] Parsed<WeeklyTrigger> parseTimeOfWeek(std::string_view text);

}  // namespace vostrel::cli
