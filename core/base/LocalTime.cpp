#include "base/LocalTime.h"

#include <fmt/chrono.h>

#include <ctime>

namespace vostrel {

namespace {

std::string formatted(Date date, const char* form) {
    const std::time_t seconds = date.seconds();
    std::tm local = {};
    if (localtime_r(&seconds, &local) == nullptr) return "unknown";
    return fmt::format(fmt::runtime(form), local);
}

}  // namespace

std::string localDay(Date date) {
    return formatted(date, "{:%Y-%m-%d}");
}

std::string localTime(Date date) {
    return formatted(date, "{:%Y-%m-%d %H:%M}");
}

}  // namespace vostrel
