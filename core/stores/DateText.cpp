#include "stores/DateText.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace vostrel {

namespace {

using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year_month_day;

struct CivilTime {
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    std::int64_t hours = 0;
    std::int64_t minutes = 0;
    std::int64_t seconds = 0;
};

CivilTime civilTime(Date date) {
    const sys_seconds instant{seconds(date.seconds())};
    const auto midnight = std::chrono::floor<std::chrono::days>(instant);
    const year_month_day day(midnight);
    const std::chrono::hh_mm_ss time(instant - midnight);
    return {static_cast<int>(day.year()),     static_cast<unsigned>(day.month()),
            static_cast<unsigned>(day.day()), time.hours().count(),
            time.minutes().count(),           time.seconds().count()};
}

bool areDigits(std::string_view text) {
    return std::ranges::all_of(text, [](char letter) { return letter >= '0' && letter <= '9'; });
}

/// Takes that many digits and the mark after them from the front of `rest`.
std::optional<int> takeNumber(std::string_view& rest, std::size_t count, char mark) {
    if (rest.size() <= count || rest[count] != mark || !areDigits(rest.substr(0, count))) return std::nullopt;
    int number = 0;
    for (const char digit : rest.substr(0, count))
        number = 10 * number + (digit - '0');
    rest.remove_prefix(count + 1);
    return number;
}

/// Seconds since 1970 of "2025-03-03T09:05:07" and the mark that follows.
std::optional<std::int64_t> takeSeconds(std::string_view& rest, char mark) {
    const auto year = takeNumber(rest, 4, '-');
    const auto month = year ? takeNumber(rest, 2, '-') : std::nullopt;
    const auto day = month ? takeNumber(rest, 2, 'T') : std::nullopt;
    const auto hour = day ? takeNumber(rest, 2, ':') : std::nullopt;
    const auto minute = hour ? takeNumber(rest, 2, ':') : std::nullopt;
    const auto second = minute ? takeNumber(rest, 2, mark) : std::nullopt;
    if (!second || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    const year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                              std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    const auto instant = sys_seconds(sys_days(date)) + std::chrono::hours(*hour) + std::chrono::minutes(*minute);
    return instant.time_since_epoch().count() + *second;
}

/// Nanoseconds of "500" (half a second) and the "Z" that ends the text: 0 to 1,000,000,000.
std::optional<std::int64_t> takeFraction(std::string_view rest) {
    constexpr std::size_t nanosecondDigits = 9;
    if (!rest.ends_with('Z')) return std::nullopt;
    rest.remove_suffix(1);
    if (rest.empty() || !areDigits(rest)) return std::nullopt;
    std::string kept(rest.substr(0, nanosecondDigits));
    kept.resize(nanosecondDigits, '0');
    const bool roundsUp = rest.size() > nanosecondDigits && rest[nanosecondDigits] >= '5';
    return std::stoll(kept) + (roundsUp ? 1 : 0);
}

}  // namespace

std::string dateText(Date date) {
    const auto time = civilTime(date);
    std::string fraction = fmt::format("{:09}", date.nanosecondsOfSecond());
    const auto last = fraction.find_last_not_of('0');
    fraction.resize(std::max<std::size_t>(3, last == std::string::npos ? 0 : last + 1));
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{}Z", time.year, time.month, time.day, time.hours,
                       time.minutes, time.seconds, fraction);
}

std::optional<Date> dateFromText(std::string_view text) {
    const bool hasFraction = text.contains('.');
    auto rest = text;
    auto whole = takeSeconds(rest, hasFraction ? '.' : 'Z');
    auto nanoseconds = hasFraction ? takeFraction(rest) : std::optional<std::int64_t>(0);
    if (!whole || !nanoseconds || (!hasFraction && !rest.empty())) return std::nullopt;
    if (*nanoseconds == 1'000'000'000) {
        ++*whole;
        nanoseconds = 0;
    }
    const Date date = Date::fromSeconds(*whole, *nanoseconds);
    const bool inRange = date.seconds() == *whole && date.nanosecondsOfSecond() == *nanoseconds;
    return inRange ? std::optional(date) : std::nullopt;
}

std::string compactDateText(Date date) {
    const auto time = civilTime(date);
    return fmt::format("{:04}{:02}{:02}-{:02}{:02}{:02}", time.year, time.month, time.day, time.hours, time.minutes,
                       time.seconds);
}

}  // namespace vostrel
