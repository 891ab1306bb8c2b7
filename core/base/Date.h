#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <ctime>
#include <functional>

namespace vostrel {

/// A length of time, to the nanosecond.
using Duration = std::chrono::nanoseconds;

/// An instant: nanoseconds since 1970 in UTC, between the years 1677 and 2262.
///
/// Arithmetic never overflows: what lies beyond the range becomes its nearest end, so that a file dated in the year
/// 9999 or a damaged record compares as very late or very early instead of wrapping round.
class Date {
public:
    constexpr Date() = default;
    static constexpr Date fromNanoseconds(std::int64_t sinceEpoch) { return Date(sinceEpoch); }
    static Date fromSeconds(std::int64_t seconds, std::int64_t nanoseconds = 0);
    static Date fromTimespec(const timespec& time) { return fromSeconds(time.tv_sec, time.tv_nsec); }
    /// The system's wall clock, which may jump either way.
    static Date now();
    static constexpr Date distantPast() { return Date(INT64_MIN); }
    static constexpr Date distantFuture() { return Date(INT64_MAX); }

    [[nodiscard]] constexpr std::int64_t nanoseconds() const { return sinceEpoch; }
    /// Whole seconds since 1970, rounded down.
    [[nodiscard]] std::int64_t seconds() const;
    /// The nanoseconds beyond `seconds()`: 0 to 999,999,999.
    [[nodiscard]] std::int64_t nanosecondsOfSecond() const;

    friend constexpr auto operator<=>(const Date&, const Date&) = default;
    friend Date operator+(Date date, Duration length);
    friend Date operator-(Date date, Duration length);
    friend Duration operator-(Date later, Date earlier);

private:
    explicit constexpr Date(std::int64_t nanoseconds) : sinceEpoch(nanoseconds) {}

    std::int64_t sinceEpoch = 0;
};

/// Where the present comes from: the system's clock, a test's, or the demo's, which stands forty days ahead.
using Clock = std::function<Date()>;

}  // namespace vostrel
