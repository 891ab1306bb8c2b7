#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "monitor/SpaceLine.h"

namespace vostrel {

/// Tells once when free space falls below one of the user's alert levels, and not again until it has clearly
/// recovered. Amounts are bytes. A value, kept in memory only.
class AlertTracker {
public:
    /// A level that was told is armed again when free space is this far above it, whatever the user's own margin.
    static constexpr std::int64_t hysteresisBytes = 1'000'000'000;

    /// Every level is armed, so that the first reading tells of those that free space is below already. A level that
    /// stands twice counts once.
    explicit AlertTracker(const std::vector<SpaceLine>& levels);

    /// A level that was there before stays as it was; a new one is armed unless free space is below it already.
    void setLevels(const std::vector<SpaceLine>& levels, std::int64_t free, std::int64_t total);

    /// The armed levels that free space is below, which are armed no longer: the lowest, and gravest, first.
    [[nodiscard]] std::vector<SpaceLine> update(std::int64_t free, std::int64_t total);

private:
    std::unordered_map<SpaceLine, bool> armed;
    std::vector<SpaceLine> order;
};

}  // namespace vostrel
