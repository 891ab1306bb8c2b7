#include "monitor/AlertTracker.h"

#include <algorithm>
#include <utility>

namespace vostrel {

AlertTracker::AlertTracker(const std::vector<SpaceLine>& levels) {
    for (const SpaceLine& level : levels) {
        if (armed.emplace(level, true).second) order.push_back(level);
    }
}

void AlertTracker::setLevels(const std::vector<SpaceLine>& levels, std::int64_t free, std::int64_t total) {
    std::unordered_map<SpaceLine, bool> kept;
    for (const SpaceLine& level : levels) {
        const auto before = armed.find(level);
        kept.emplace(level, before == armed.end() ? level.bytes(total) <= free : before->second);
    }
    armed = std::move(kept);
    order = levels;
}

std::vector<SpaceLine> AlertTracker::update(std::int64_t free, std::int64_t total) {
    const auto bytes = [&](const SpaceLine& level) { return level.bytes(total); };
    std::vector<SpaceLine> crossed;
    for (const SpaceLine& level : order) {
        const std::int64_t threshold = bytes(level);
        bool& isArmed = armed.at(level);
        if (isArmed && free < threshold) {
            isArmed = false;
            crossed.insert(std::ranges::upper_bound(crossed, threshold, {}, bytes), level);
        } else if (!isArmed && free >= threshold + hysteresisBytes) {
            isArmed = true;
        }
    }
    return crossed;
}

}  // namespace vostrel
