#pragma once

#include <algorithm>
#include <cstdlib>

namespace vostrel::test {

/// How many rounds a random or fault test takes: `usual`, times VOSTREL_ROUNDS (a whole number; 1 when it is not set).
/// The usual number is small, so that every run is quick; a long night multiplies it.
[[nodiscard]] inline int rounds(int usual) {
    const char* factor = std::getenv("VOSTREL_ROUNDS");
    return usual * std::max(1, factor == nullptr ? 1 : std::atoi(factor));
}

}  // namespace vostrel::test
