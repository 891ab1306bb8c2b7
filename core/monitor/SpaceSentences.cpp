#include "monitor/SpaceSentences.h"

#include <fmt/format.h>

#include "base/SpaceFormat.h"
#include "monitor/AmountText.h"

namespace vostrel::SpaceSentences {

std::string text(const SpaceLine& line) {
    return AmountText::format(line.value()) + (line.unit() == SpaceLineUnit::gigabytes ? " GB" : "%");
}

std::string_view level(SpaceLevel level) {
    switch (level) {
        case SpaceLevel::normal:
            return "Free space is well above your line.";
        case SpaceLevel::low:
            return "Free space is close to your line.";
        case SpaceLevel::critical:
            return "Free space is below your line.";
    }
    return {};
}

std::string alert(const SpaceLine& crossed, const VolumeCapacity& capacity) {
    const char* const of = crossed.unit() == SpaceLineUnit::percent ? " of the disk" : "";
    return fmt::format("Free space is below {}{}: {} of {} is free.", text(crossed), of,
                       SpaceFormat::bytesFloor(capacity.displayedFree()), SpaceFormat::bytes(capacity.total));
}

}  // namespace vostrel::SpaceSentences
