#pragma once

#include <optional>

#include "filesystem/UnreadableReason.h"
#include "filesystem/WalkAccounting.h"

namespace vostrel {

/// Whether a walk may open a folder: nothing means it may be measured.
struct AccessDecision {
    std::optional<UnreadableReason> blockedFor;

    friend bool operator==(const AccessDecision&, const AccessDecision&) = default;
};

/// The decision as a walk carries it: the number is one more than the reason's.
[[nodiscard]] constexpr WalkDecision walkDecisionOf(const AccessDecision& access) {
    if (!access.blockedFor) return {};
    return {static_cast<std::uint8_t>(static_cast<int>(*access.blockedFor) + 1)};
}

/// The reason of a decision that does not enter.
[[nodiscard]] constexpr UnreadableReason reasonOf(WalkDecision decision) {
    return static_cast<UnreadableReason>(decision.leftOutFor - 1);
}

}  // namespace vostrel
