#include "cleaning/ThresholdGate.h"

#include <algorithm>

#include "base/Checked.h"

namespace vostrel {

namespace {

/// Whether the other moment, past or by a clock that was wrong ahead, is less than so far away.
bool isWithin(Duration length, std::optional<Date> moment, Date now) {
    return moment && now - *moment < length && *moment - now < length;
}

}  // namespace

bool ThresholdGate::shouldStart(const Reading& reading, Date now, ScheduleState& schedule) {
    if (!reading.free || reading.line < 1) {
        belowStreak = 0;
        return false;
    }
    const std::int64_t margin = std::max<std::int64_t>(reading.hysteresis, 0);
    if (*reading.free >= saturatingAdd(reading.line, margin)) schedule.thresholdLatchedAt.reset();
    if (*reading.free >= reading.line) {
        belowStreak = 0;
        return false;
    }
    ++belowStreak;
    if (reading.isPaused || belowStreak < requiredReadings) return false;
    if (isWithin(latchDuration, schedule.thresholdLatchedAt, now)) return false;
    if (isWithin(cooldown, schedule.lastThresholdSession, now)) return false;
    belowStreak = 0;
    return true;
}

bool ThresholdGate::finish(Date startedAt, std::optional<std::int64_t> freeAfter, std::int64_t line, Date now,
                           ScheduleState& schedule) {
    schedule.lastThresholdSession = startedAt;
    const bool endedBelow = isBelow(freeAfter, line);
    if (endedBelow) schedule.thresholdLatchedAt = now;
    return endedBelow;
}

}  // namespace vostrel
