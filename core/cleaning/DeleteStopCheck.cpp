#include "cleaning/DeleteStopCheck.h"

#include <utility>

namespace vostrel {

DeleteStopCheck::DeleteStopCheck(const RunControl& ofRun, Questions asked)
    : control(ofRun), questions(std::move(asked)), apps(questions.runningApps, questions.interval) {}

std::optional<StopReason> DeleteStopCheck::reason() {
    const std::lock_guard guard(lock);
    if (found) return found;
    if (control.isCancelled()) return found = StopReason{StopReason::Kind::cancelled};
    const Date now = questions.clock();
    const bool isFresh = lastCheck && now >= *lastCheck && now - *lastCheck < questions.interval;
    if (isFresh) return found;
    lastCheck = now;
    return found = ask(now);
}

std::optional<StopReason> DeleteStopCheck::ask(Date now) {
    if (questions.liveCheck) {
        if (auto changed = questions.liveCheck()) return changed;
    }
    if (questions.pauseWhileRunning.empty()) return std::nullopt;
    const auto running = apps.identifiers(now);
    // Which of them opened cannot be told, but one may have.
    if (!running) return StopReason{StopReason::Kind::cancelled};
    for (const std::string& identifier : questions.pauseWhileRunning) {
        if (running->contains(identifier))
            return StopReason{StopReason::Kind::appRunning, questions.runningApps.displayName(identifier)};
    }
    return std::nullopt;
}

}  // namespace vostrel
