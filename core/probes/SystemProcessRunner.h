#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <set>

#include "probes/ProcessRunning.h"

namespace vostrel {

/// Runs the commands of a list, and nothing else: without the environment of this process, without its descriptors, in
/// a process group of their own which ends with them, for a limited time and with limited output. None of a command's
/// processes is left behind but those that have left its group.
struct SystemProcessRunner final : ProcessRunning {
    static constexpr std::size_t usualOutputBytes = 524'288;

    std::set<ProbeCommand> allowList = ProbeCommand::allowed();
    /// Of standard output and errors together: one byte more ends the command.
    std::size_t maxOutputBytes = usualOutputBytes;
    /// How long a killed command is waited for before it is killed once more, and how long in all. One that the system
    /// does not let go even then is reaped when it goes; its result does not wait for that.
    Duration killGrace = std::chrono::seconds(1);
    Duration reapLimit = std::chrono::seconds(5);

    using ProcessRunning::run;
    [[nodiscard]] ProcessResult run(const ProbeCommand& command, Duration timeout,
                                    const std::function<bool()>& isCancelled) override;

    /// Kills every command that any runner of this process runs now: for when the application quits. Any thread.
    static void killAll();
};

}  // namespace vostrel
