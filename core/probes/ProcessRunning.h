#pragma once

#include <expected>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/Date.h"
#include "probes/ProbeCommand.h"

namespace vostrel {

/// The bytes that a command wrote.
struct ProcessOutput {
    // Not "stdout": the C library may have macros of these names.
    std::string output;
    std::string errors;

    /// As text: what is not UTF-8 becomes U+FFFD.
    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::string errorText() const;

    friend bool operator==(const ProcessOutput&, const ProcessOutput&) = default;
};

/// Why a command gave nothing.
struct ProcessFailure {
    enum class Kind {
        // With an error number.
        launchFailed,
        readFailed,
        waitFailed,
        // With the exit status, which is not zero, or the signal.
        exited,
        signaled,
        // With nothing.
        notAllowed,
        timedOut,
        cancelled,
        outputTooLarge,
    };

    Kind kind = Kind::launchFailed;
    int code = 0;

    friend bool operator==(const ProcessFailure&, const ProcessFailure&) = default;
};

using ProcessResult = std::expected<ProcessOutput, ProcessFailure>;

/// Runs commands that ask the system something. Blocks the calling thread; any thread.
class ProcessRunning {
public:
    ProcessRunning() = default;
    ProcessRunning(const ProcessRunning&) = default;
    ProcessRunning& operator=(const ProcessRunning&) = default;
    virtual ~ProcessRunning() = default;

    /// The command ends by itself, or is ended after `timeout` or once `isCancelled` (thread-safe, may be empty) says
    /// so.
    [[nodiscard]] virtual ProcessResult run(const ProbeCommand& command, Duration timeout,
                                            const std::function<bool()>& isCancelled) = 0;
    [[nodiscard]] ProcessResult run(const ProbeCommand& command, Duration timeout) { return run(command, timeout, {}); }
};

/// Fixed answers, for tests and previews; a command without one cannot be launched. One thread.
class FixedProcessRunner final : public ProcessRunning {
public:
    explicit FixedProcessRunner(std::map<ProbeCommand, ProcessResult> table) : answers(std::move(table)) {}

    using ProcessRunning::run;
    [[nodiscard]] ProcessResult run(const ProbeCommand& command, Duration timeout,
                                    const std::function<bool()>& isCancelled) override;
    /// What was asked, in its order, with the time-outs.
    [[nodiscard]] const std::vector<std::pair<ProbeCommand, Duration>>& calls() const { return asked; }

private:
    std::map<ProbeCommand, ProcessResult> answers;
    std::vector<std::pair<ProbeCommand, Duration>> asked;
};

}  // namespace vostrel
