#pragma once

#include <array>
#include <optional>

namespace vostrel {

/// The order in which the application starts itself again, so that a new process sees a change to Full Disk Access.
///
/// It only says what comes next; the application takes the steps. One thread at a time.
class FullDiskAccessRelaunch {
public:
    enum class Phase { idle, launching, failed };
    enum class Step { stopWalks, startNewCopy, quitThisCopy, resumeWalks };
    enum class Start { started, failed };

    /// Walks resume only when the new copy could not be started.
    static constexpr std::array<Step, 4> order{Step::stopWalks, Step::startNewCopy, Step::quitThisCopy,
                                               Step::resumeWalks};

    [[nodiscard]] Phase phase() const { return current; }

    /// False while a launch is under way: two presses start one copy.
    [[nodiscard]] bool begin();

    /// What follows the attempt to start the new copy; nothing when none was under way.
    [[nodiscard]] std::optional<Step> finished(Start start);

private:
    Phase current = Phase::idle;
};

}  // namespace vostrel
