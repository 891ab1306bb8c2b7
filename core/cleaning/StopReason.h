#pragma once

#include <string>

namespace vostrel {

/// Why a run stopped before all its items were handled.
struct StopReason {
    enum class Kind { appRunning, cancelled, ruleChanged, paused };

    Kind kind = Kind::cancelled;
    /// Of the application that opened, as the user knows it.
    std::string appName = {};

    /// What the run's report says.
    [[nodiscard]] std::string sentence() const {
        switch (kind) {
            case Kind::appRunning:
                return "Stopped because " + appName + " opened.";
            case Kind::cancelled:
                break;
            case Kind::ruleChanged:
                return "Stopped because the rule changed.";
            case Kind::paused:
                return "Stopped because automatic cleaning was paused.";
        }
        return "Stopped before it finished.";
    }

    friend bool operator==(const StopReason&, const StopReason&) = default;
};

}  // namespace vostrel
