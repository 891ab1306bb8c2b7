#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "cleaning/RunControl.h"
#include "cleaning/RunningAppsSnapshot.h"
#include "cleaning/StopReason.h"

namespace vostrel {

/// Whether a run must stop: asked before each item and, while one is deleted, before each entry. Once it gave a reason
/// it keeps to it. Thread-safe.
class DeleteStopCheck {
public:
    /// What is asked beside the control: at most once in `interval`.
    struct Questions {
        /// Whether the rule changed, or automatic cleaning was paused; may be empty.
        std::function<std::optional<StopReason>()> liveCheck;
        std::vector<std::string> pauseWhileRunning;
        const RunningAppsProviding& runningApps;
        Duration interval;
        Clock clock;
    };

    /// The control and what the questions refer to outlive the object.
    DeleteStopCheck(const RunControl& ofRun, Questions asked);

    [[nodiscard]] std::optional<StopReason> reason();

private:
    [[nodiscard]] std::optional<StopReason> ask(Date now);

    const RunControl& control;
    Questions questions;
    RunningAppsSnapshot apps;
    std::mutex lock;
    std::optional<Date> lastCheck;
    std::optional<StopReason> found;
};

}  // namespace vostrel
