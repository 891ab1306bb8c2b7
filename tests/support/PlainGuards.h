#pragma once

#include <optional>
#include <string>

#include "filesystem/PathGuards.h"

namespace vostrel::test {

/// Guards of a made-up home on a disk where nothing is a link, a mount or in a cloud.
inline PathGuards guardsOf(const std::string& home) {
    GuardSurroundings around;
    around.home = home;
    around.resolve = [](const auto& path) { return path; };
    around.examine = [](const auto&) { return std::nullopt; };
    around.isMountPoint = [](const auto&) { return false; };
    around.isInICloud = [](const auto&) { return false; };
    around.isDatalessPath = [](const auto&) { return false; };
    return PathGuards(around);
}

}  // namespace vostrel::test
