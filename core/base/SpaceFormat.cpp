#include "base/SpaceFormat.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>

namespace vostrel::SpaceFormat {
namespace {

struct Unit {
    double size;
    std::string_view shortName;
    std::string_view longName;
};

constexpr std::array units = {
    Unit{1e6, "MB", "megabytes"},
    Unit{1e9, "GB", "gigabytes"},
    Unit{1e12, "TB", "terabytes"},
    Unit{1e15, "PB", "petabytes"},
};

constexpr std::int64_t megabyte = 1'000'000;

/// The largest unit that the count fills, or the one above where rounding would give a thousand of it.
const Unit& unitFor(double count) {
    std::size_t chosen = 0;
    while (chosen + 1 < units.size() && std::round(count / units.at(chosen).size) >= 1000)
        ++chosen;
    return units.at(chosen);
}

std::string amount(std::int64_t count, std::string_view Unit::* name) {
    const Unit& unit = unitFor(static_cast<double>(count));
    const double value = static_cast<double>(count) / unit.size;
    if (value < 9.95) return fmt::format("{:.1f} {}", value, unit.*name);
    return fmt::format("{:.0f} {}", std::round(value), unit.*name);
}

}  // namespace

std::string bytes(std::int64_t count) {
    if (count <= 0) return "0 MB";
    return count < megabyte ? "less than 1 MB" : amount(count, &Unit::shortName);
}

std::string spokenBytes(std::int64_t count) {
    if (count <= 0) return "0 megabytes";
    return count < megabyte ? "less than 1 megabyte" : amount(count, &Unit::longName);
}

std::string upTo(std::int64_t count) {
    return count < megabyte ? bytes(count) : "up to " + bytes(count);
}

std::string bytesFloor(std::int64_t count) {
    if (count < megabyte) return bytes(count);
    std::int64_t size = megabyte;
    std::size_t chosen = 0;
    for (; chosen + 1 < units.size() && count / size >= 1000; ++chosen)
        size *= 1000;
    const std::int64_t tenths = count / (size / 10);
    const auto name = units.at(chosen).shortName;
    return tenths < 100 ? fmt::format("{}.{} {}", tenths / 10, tenths % 10, name)
                        : fmt::format("{} {}", tenths / 10, name);
}

std::string percent(double share) {
    if (!(share > 0)) return "0%";
    constexpr double roundingError = 1e-9;  // 0.29 times 100 is a little less than 29
    const double whole = std::floor(share * 100 + roundingError);
    return whole < 1 ? "less than 1%" : fmt::format("{:.0f}%", whole);
}

}  // namespace vostrel::SpaceFormat
