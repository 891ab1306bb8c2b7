#include "probes/ProcessRunning.h"

#include <cerrno>

#include "base/UnicodeText.h"

namespace vostrel {

std::string ProcessOutput::text() const {
    return repaired(output);
}

std::string ProcessOutput::errorText() const {
    return repaired(errors);
}

ProcessResult FixedProcessRunner::run(const ProbeCommand& command, Duration timeout, const std::function<bool()>&) {
    asked.emplace_back(command, timeout);
    const auto answer = answers.find(command);
    if (answer == answers.end())
        return std::unexpected(ProcessFailure{.kind = ProcessFailure::Kind::launchFailed, .code = ENOENT});
    return answer->second;
}

}  // namespace vostrel
