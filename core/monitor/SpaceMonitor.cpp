#include "monitor/SpaceMonitor.h"

#include <algorithm>
#include <utility>

namespace vostrel {

SpaceMonitor::SpaceMonitor(const VolumeCapacityReading& source, std::filesystem::path path, AppSettings chosen)
    : settings(std::move(chosen)), reader(&source), volume(std::move(path)), tracker(settings.alertLevels) {}

std::expected<MonitorReading, VolumeCapacityError> SpaceMonitor::tick(Date now, Refresh important) {
    const bool asks = important == Refresh::forced || wantsImportant(now);
    auto capacity = reader->read(volume, asks ? ImportantFigure::included : ImportantFigure::leftOut);
    if (!capacity) return std::unexpected(capacity.error());
    if (capacity->availableImportant) {
        rememberPurgeable(*capacity, now);
    } else {
        capacity->availableImportant = carriedForward(*capacity, now);
    }

    MonitorReading reading;
    reading.capacity = *capacity;
    const std::int64_t free = capacity->displayedFree();
    reading.lineBytes = settings.line.bytes(capacity->total);
    reading.level = spaceLevel(free, reading.lineBytes);
    reading.crossedAlertLevels = tracker.update(free, capacity->total);
    last = reading;
    return reading;
}

void SpaceMonitor::update(AppSettings chosen) {
    settings = std::move(chosen);
    if (last) {
        tracker.setLevels(settings.alertLevels, last->capacity.displayedFree(), last->capacity.total);
    } else {
        tracker = AlertTracker(settings.alertLevels);
    }
}

bool SpaceMonitor::wantsImportant(Date now) const {
    if (!lastImportantAt) return true;
    const Duration age = now - *lastImportantAt;
    const bool clockWentBack = age < Duration::zero();
    return clockWentBack || age >= importantRefreshInterval ||
           (last && last->capacity.displayedFree() < last->lineBytes);
}

void SpaceMonitor::rememberPurgeable(const VolumeCapacity& capacity, Date now) {
    const std::int64_t available = capacity.availableNow;
    const std::int64_t important = std::min(std::max(*capacity.availableImportant, available), capacity.total);
    lastImportantAt = now;
    lastPurgeable = std::max<std::int64_t>(important - available, 0);
}

std::optional<std::int64_t> SpaceMonitor::carriedForward(const VolumeCapacity& capacity, Date now) const {
    if (!lastPurgeable || !lastImportantAt) return std::nullopt;
    const Duration age = now - *lastImportantAt;
    if (age > maxCarryAge || age < -maxCarryAge) return std::nullopt;
    // As a difference, since the sum might not fit.
    const bool fits = *lastPurgeable < capacity.total - capacity.availableNow;
    return fits ? capacity.availableNow + *lastPurgeable : capacity.total;
}

}  // namespace vostrel
