#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <optional>
#include <vector>

#include "base/Date.h"
#include "monitor/AlertTracker.h"
#include "monitor/AppSettings.h"
#include "monitor/SpaceLevel.h"
#include "monitor/VolumeCapacityReading.h"

namespace vostrel {

/// One look at the volume, measured by the user's settings.
struct MonitorReading {
    VolumeCapacity capacity;
    SpaceLevel level = SpaceLevel::normal;
    /// The user's line on a volume of this size.
    std::int64_t lineBytes = 0;
    /// The alert levels that free space fell below with this reading, the lowest first.
    std::vector<SpaceLine> crossedAlertLevels;

    friend bool operator==(const MonitorReading&, const MonitorReading&) = default;
};

/// Reads the free space of one volume time and again.
///
/// What is available for important use is costly to ask for: it is asked for every five minutes, or at every reading
/// while free space is below the line, and what the system could clear away is carried forward in between. A value that
/// holds a reference to its reader; not for several threads.
class SpaceMonitor {
public:
    static constexpr Duration importantRefreshInterval = std::chrono::seconds(300);
    /// An older figure is not carried forward.
    static constexpr Duration maxCarryAge = std::chrono::seconds(1800);
    static constexpr double lowSpaceMultiplier = lowMultiplier;

    enum class Refresh { whenDue, forced };

    /// The reader outlives the monitor. `volume` is any path on the volume to read.
    SpaceMonitor(const VolumeCapacityReading& reader, std::filesystem::path volume, AppSettings settings);

    /// Reads the volume; a failure changes nothing. `forced` asks for the important figure in any case, as after a
    /// cleanup.
    [[nodiscard]] std::expected<MonitorReading, VolumeCapacityError> tick(Date now, Refresh important);

    /// From now on these settings hold.
    void update(AppSettings settings);

    [[nodiscard]] const std::optional<MonitorReading>& lastReading() const { return last; }

private:
    [[nodiscard]] bool wantsImportant(Date now) const;
    void rememberPurgeable(const VolumeCapacity& capacity, Date now);
    [[nodiscard]] std::optional<std::int64_t> carriedForward(const VolumeCapacity& capacity, Date now) const;

    AppSettings settings;
    const VolumeCapacityReading* reader;
    std::filesystem::path volume;
    AlertTracker tracker;
    std::optional<Date> lastImportantAt;
    /// What the system could clear away then.
    std::optional<std::int64_t> lastPurgeable;
    std::optional<MonitorReading> last;
};

}  // namespace vostrel
