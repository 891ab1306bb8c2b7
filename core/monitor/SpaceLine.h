#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace vostrel {

enum class SpaceLineUnit { gigabytes, percent };

/// An amount of free space that the user set: so many gigabytes (of 1,000,000,000 bytes), or so many percent of the
/// disk. It is at least 1 of its unit, and at most 4000 GB or 50 %; what is asked for beyond that becomes the limit.
class SpaceLine {
public:
    SpaceLine(SpaceLineUnit unit, double value);
    [[nodiscard]] static SpaceLine gigabytes(double value) { return {SpaceLineUnit::gigabytes, value}; }
    [[nodiscard]] static SpaceLine percent(double value) { return {SpaceLineUnit::percent, value}; }

    static constexpr double lowest = 1;
    [[nodiscard]] static double highest(SpaceLineUnit unit);

    [[nodiscard]] SpaceLineUnit unit() const { return unitChosen; }
    [[nodiscard]] double value() const { return number; }

    /// The amount in bytes on a disk of that many, to the nearest byte.
    [[nodiscard]] std::int64_t bytes(std::int64_t ofTotal) const;

    /// The same amount on a disk of `total` bytes said in the other unit, to one decimal. Of a disk whose size is not
    /// known (below 1) the number stays and only its unit changes.
    [[nodiscard]] SpaceLine converted(SpaceLineUnit unit, std::int64_t total) const;

    friend bool operator==(const SpaceLine&, const SpaceLine&) = default;

private:
    SpaceLineUnit unitChosen;
    double number;
};

}  // namespace vostrel

template <>
struct std::hash<vostrel::SpaceLine> {
    std::size_t operator()(const vostrel::SpaceLine& line) const noexcept {
        return std::hash<double>()(line.unit() == vostrel::SpaceLineUnit::percent ? -line.value() : line.value());
    }
};
