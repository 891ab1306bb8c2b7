#include "probes/SystemProcessRunner.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <tuple>
#include <utility>

#include "platform/ChildDescriptors.h"
#include "platform/ChildProcess.h"
#include "probes/LiveChildren.h"
#include "probes/OutputPipes.h"

namespace vostrel {

namespace {

using Kind = ProcessFailure::Kind;

/// Cancelling a command takes no longer than this.
constexpr Duration longestWait = std::chrono::milliseconds(250);

/// All that a command sees of the world around it.
const Environment cleanEnvironment{{"PATH", "/usr/bin:/bin:/usr/sbin:/sbin"}, {"LANG", "C"}, {"LC_ALL", "C"}};

/// One command while it runs.
class Run {
public:
    Run(const SystemProcessRunner& limits, std::shared_ptr<ChildProcess> started, OutputPipes ends)
        : runner(limits), child(std::move(started)), pipes(std::move(ends)) {
        LiveChildren::ofThisProcess().add(child);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { LiveChildren::ofThisProcess().remove(child); }

    ProcessResult follow(Duration timeout, const std::function<bool()>& isCancelled) {
        const auto start = std::chrono::steady_clock::now();
        while (true) {
            if (const auto end = child->waitForEnd({})) return result(*end);
            const Duration left = timeout - (std::chrono::steady_clock::now() - start);
            if (isCancelled && isCancelled()) return kill({.kind = Kind::cancelled});
            if (left <= Duration::zero()) return kill({.kind = Kind::timedOut});
            if (auto read = wait(std::min(left, longestWait)); !read) return kill(read.error());
        }
    }

private:
    /// Until something can be read, or its end.
    std::expected<void, ProcessFailure> wait(Duration limit) {
        if (pipes.areOpen()) return pipes.read(limit);
        std::ignore = child->waitForEnd(limit);
        return {};
    }

    ProcessResult kill(ProcessFailure reason) const {
        child->kill();
        if (!child->waitForEnd(runner.killGrace)) {
            child->kill();
            std::ignore = child->waitForEnd(std::max(runner.reapLimit - runner.killGrace, Duration::zero()));
        }
        return std::unexpected(reason);
    }

    /// What it wrote last may still be in the pipes. Their end is not waited for: a process that has left the child's
    /// group may hold them open.
    ProcessResult result(ChildEnd end) {
        switch (end.kind) {
            case ChildEnd::Kind::notStarted:
                return std::unexpected(ProcessFailure{.kind = Kind::launchFailed, .code = end.number});
            case ChildEnd::Kind::notWaitedFor:
                return std::unexpected(ProcessFailure{.kind = Kind::waitFailed, .code = end.number});
            case ChildEnd::Kind::signaled:
                return std::unexpected(ProcessFailure{.kind = Kind::signaled, .code = end.number});
            case ChildEnd::Kind::exited:
                break;
        }
        if (auto read = pipes.read({}); !read) return std::unexpected(read.error());
        if (end.number != 0) return std::unexpected(ProcessFailure{.kind = Kind::exited, .code = end.number});
        return std::move(pipes).take();
    }

    const SystemProcessRunner& runner;
    std::shared_ptr<ChildProcess> child;
    OutputPipes pipes;
};

}  // namespace

ProcessResult SystemProcessRunner::run(const ProbeCommand& command, Duration timeout,
                                       const std::function<bool()>& isCancelled) {
    if (!allowList.contains(command)) return std::unexpected(ProcessFailure{.kind = Kind::notAllowed});
    auto output = makePipe();
    auto errors = makePipe();
    if (!output) return std::unexpected(ProcessFailure{.kind = Kind::launchFailed, .code = output.error()});
    if (!errors) return std::unexpected(ProcessFailure{.kind = Kind::launchFailed, .code = errors.error()});
    ChildProgram program{.words = {command.executable},
                         .environment = cleanEnvironment,
                         .output = std::move(output->writeEnd),
                         .errors = std::move(errors->writeEnd)};
    program.words.insert(program.words.end(), command.arguments.begin(), command.arguments.end());
    Run current(*this, std::make_shared<ChildProcess>(std::move(program)),
                OutputPipes(std::move(output->readEnd), std::move(errors->readEnd), maxOutputBytes));
    return current.follow(timeout, isCancelled);
}

void SystemProcessRunner::killAll() {
    LiveChildren::ofThisProcess().killAll();
}

}  // namespace vostrel
