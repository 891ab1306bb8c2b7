#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vostrel {

/// The form in which dates are stored: ISO 8601 in UTC with three to nine digits of fraction, as many as it takes to
/// the nanosecond: "2025-03-03T09:05:07.500Z".
[[nodiscard]] std::string dateText(Date date);

/// The instant of such a text; the fraction may be absent or longer, and is rounded to the nearest nanosecond (which
/// may be the next second). Nothing when it is anything else, a day that no calendar has, or beyond `Date`'s range.
[[nodiscard]] std::optional<Date> dateFromText(std::string_view text);

/// "20250303-090507", in UTC: the form that dates the name of a file.
[[nodiscard]] std::string compactDateText(Date date);

}  // namespace vostrel
