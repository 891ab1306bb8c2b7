#include "monitor/SpaceLine.h"

#include <algorithm>
#include <cmath>

#include "monitor/AmountText.h"

namespace vostrel {

namespace {

constexpr double gigabyte = 1e9;

double clamped(SpaceLineUnit unit, double value) {
    if (!(value >= SpaceLine::lowest)) return SpaceLine::lowest;  // as "not a number" is not
    return std::min(value, SpaceLine::highest(unit));
}

}  // namespace

SpaceLine::SpaceLine(SpaceLineUnit unit, double value) : unitChosen(unit), number(clamped(unit, value)) {}

double SpaceLine::highest(SpaceLineUnit unit) {
    return unit == SpaceLineUnit::gigabytes ? 4000 : 50;
}

// The limits keep either product far inside 64 bits.
std::int64_t SpaceLine::bytes(std::int64_t ofTotal) const {
    if (unitChosen == SpaceLineUnit::gigabytes) return static_cast<std::int64_t>(std::round(number * gigabyte));
    const auto total = static_cast<double>(std::max<std::int64_t>(ofTotal, 0));
    return static_cast<std::int64_t>(std::round(total * number / 100));
}

SpaceLine SpaceLine::converted(SpaceLineUnit unit, std::int64_t total) const {
    if (unit == unitChosen) return *this;
    if (total < 1) return {unit, number};
    const auto amount = static_cast<double>(bytes(total));
    const double value =
        unit == SpaceLineUnit::gigabytes ? amount / gigabyte : amount / static_cast<double>(total) * 100;
    return {unit, AmountText::rounded(value)};
}

}  // namespace vostrel
