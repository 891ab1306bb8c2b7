#include "base/Date.h"

#include "base/Checked.h"

namespace vostrel {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

}  // namespace

Date Date::fromSeconds(std::int64_t seconds, std::int64_t nanoseconds) {
    // The first second of the range begins before it: its whole seconds alone do not fit.
    if (seconds < 0 && nanoseconds > 0) {
        ++seconds;
        nanoseconds -= nanosecondsPerSecond;
    }
    return Date(saturatingAdd(saturatingMultiply(seconds, nanosecondsPerSecond), nanoseconds));
}

Date Date::now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return fromTimespec(time);
}

std::int64_t Date::seconds() const {
    const std::int64_t truncated = sinceEpoch / nanosecondsPerSecond;
    return sinceEpoch % nanosecondsPerSecond < 0 ? truncated - 1 : truncated;
}

std::int64_t Date::nanosecondsOfSecond() const {
    const std::int64_t rest = sinceEpoch % nanosecondsPerSecond;
    return rest < 0 ? rest + nanosecondsPerSecond : rest;
}

Date operator+(Date date, Duration length) {
    return Date(saturatingAdd(date.sinceEpoch, length.count()));
}

Date operator-(Date date, Duration length) {
    return Date(saturatingSubtract(date.sinceEpoch, length.count()));
}

Duration operator-(Date later, Date earlier) {
    return Duration(saturatingSubtract(later.sinceEpoch, earlier.sinceEpoch));
}

}  // namespace vostrel
