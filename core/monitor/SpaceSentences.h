#pragma once

#include <string>
#include <string_view>

#include "monitor/SpaceLevel.h"
#include "monitor/SpaceLine.h"
#include "monitor/VolumeCapacity.h"

/// What the user is told of free space. An amount of it is never said larger than it is.
namespace vostrel::SpaceSentences {

/// "20 GB", "12.5%".
[[nodiscard]] std::string text(const SpaceLine& line);

[[nodiscard]] std::string_view level(SpaceLevel level);

/// The notification for an alert level: "Free space is below 20% of the disk: 99 GB of 500 GB is free."
[[nodiscard]] std::string alert(const SpaceLine& crossed, const VolumeCapacity& capacity);

}  // namespace vostrel::SpaceSentences
