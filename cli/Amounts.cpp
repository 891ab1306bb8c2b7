#include "cli/Amounts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>

#include "base/UnicodeText.h"

namespace vostrel::cli {

namespace {

struct SizeUnit {
    std::string_view name;
    std::int64_t bytes;
};

constexpr std::array sizeUnits = {
    SizeUnit{"", 1},
    SizeUnit{"b", 1},
    SizeUnit{"kb", 1'000},
    SizeUnit{"mb", 1'000'000},
    SizeUnit{"gb", 1'000'000'000},
    SizeUnit{"tb", 1'000'000'000'000},
    SizeUnit{"pb", 1'000'000'000'000'000},
};

constexpr std::array<std::string_view, 7> days = {
    "sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday",
};

constexpr std::string_view digits = "0123456789";

template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || digits.find(text.front()) == std::string_view::npos) return std::nullopt;
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    return number;
}

/// The amount of a unit that decimal digits after the point stand for, whole bytes only.
std::int64_t fractionOf(std::string_view decimals, std::int64_t unit) {
    std::int64_t sum = 0;
    for (const char digit : decimals) {
        unit /= 10;
        sum += (digit - '0') * unit;
    }
    return sum;
}

std::optional<std::int64_t> sizeOf(std::string_view number, std::int64_t unit) {
    const auto point = number.find('.');
    const auto whole = wholeNumber<std::int64_t>(number.substr(0, point));
    if (!whole || *whole > std::numeric_limits<std::int64_t>::max() / unit) return std::nullopt;
    const std::int64_t base = *whole * unit;
    if (point == std::string_view::npos) return base;
    const auto decimals = number.substr(point + 1);
    if (unit == 1 || decimals.empty() || decimals.find_first_not_of(digits) != std::string_view::npos)
        return std::nullopt;
    const std::int64_t fraction = fractionOf(decimals, unit);
    if (base > std::numeric_limits<std::int64_t>::max() - fraction) return std::nullopt;
    return base + fraction;
}

std::optional<int> weekday(std::string_view text) {
    const auto found = std::ranges::find(days, folded(text));
    if (found != days.end()) return static_cast<int>(found - days.begin()) + 1;
    return wholeNumber<int>(text);
}

}  // namespace

Parsed<int> parseCount(std::string_view text) {
    if (const auto number = wholeNumber<int>(text)) return *number;
    return std::unexpected(fmt::format("a whole number up to {} is needed", std::numeric_limits<int>::max()));
}

Parsed<int> parseCountFromOne(std::string_view text) {
    const auto number = parseCount(text);
    if (number && *number == 0) return std::unexpected("a number from 1 on is needed");
    return number;
}

Parsed<std::int64_t> parseSize(std::string_view text) {
    const auto numberEnd = std::min(text.find_first_not_of("0123456789."), text.size());
    const auto name = folded(trimmed(text.substr(numberEnd)));
    const auto unit = std::ranges::find(sizeUnits, name, &SizeUnit::name);
    if (unit != sizeUnits.end()) {
        if (const auto size = sizeOf(text.substr(0, numberEnd), unit->bytes)) return *size;
    }
    return std::unexpected("a size such as 500MB, \"1.5 GB\" or 4096 is needed");
}

Parsed<DailyTrigger> parseTimeOfDay(std::string_view text) {
    const auto colon = text.find(':');
    if (colon != std::string_view::npos) {
        const auto hour = wholeNumber<int>(text.substr(0, colon));
        const auto minute = wholeNumber<int>(text.substr(colon + 1));
        if (hour && minute) return DailyTrigger{*hour, *minute};
    }
    return std::unexpected("a time such as 09:05 is needed");
}

Parsed<WeeklyTrigger> parseTimeOfWeek(std::string_view text) {
    const auto at = text.find('@');
    if (at != std::string_view::npos) {
        const auto day = weekday(text.substr(0, at));
        const auto time = parseTimeOfDay(text.substr(at + 1));
        if (day && time) return WeeklyTrigger{*day, time->hour, time->minute};
    }
    return std::unexpected("a day and time such as monday@09:05 is needed");
}

}  // namespace vostrel::cli
