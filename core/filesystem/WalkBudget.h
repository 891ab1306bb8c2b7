#pragma once

#include <functional>

#include "base/Date.h"

namespace vostrel {

/// How long a walk may take: until `deadline`, or until `isCancelled` says so. Asked from the walking thread only.
struct WalkBudget {
    Date deadline = Date::distantFuture();
    /// Thread-safe; may be empty.
    std::function<bool()> isCancelled;
    Clock clock = &Date::now;

    /// Cancellation first, then the deadline.
    [[nodiscard]] bool isSpent() const {
        if (isCancelled && isCancelled()) return true;
        return deadline != Date::distantFuture() && clock() > deadline;
    }
};

}  // namespace vostrel
