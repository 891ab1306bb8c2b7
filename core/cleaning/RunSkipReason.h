#pragma once

namespace vostrel {

/// Why a rule was not run.
enum class RunSkipReason {
    disabled,
    paused,
    notApproved,
    appRunning,
    rootProblem,
    nothingToClean,
    anotherRunActive,
    lockUnavailable,
    logUnavailable,
    previewOutdated,
    previewExpired,
    stopped,
    unknown,  ///< something that this version does not know
};

/// The line of the log: "Not run. The rule is off."
[[nodiscard]] const char* logLine(RunSkipReason reason);

}  // namespace vostrel
