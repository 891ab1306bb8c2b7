#include "cleaning/RunSkipReason.h"

#include "cleaning/RunSentences.h"

namespace vostrel {

const char* logLine(RunSkipReason reason) {
    switch (reason) {
        case RunSkipReason::disabled:
            return "Not run. The rule is off.";
        case RunSkipReason::paused:
            return "Not run. Automatic cleaning is paused.";
        case RunSkipReason::notApproved:
            return "Not run. Preview the rule and approve it first.";
        case RunSkipReason::appRunning:
            return "An app it waits for was open.";
        case RunSkipReason::rootProblem:
            return "There is a problem with the folder.";
        case RunSkipReason::nothingToClean:
            return "Nothing matched.";
        case RunSkipReason::anotherRunActive:
            return "Not run. Another clean was running.";
        case RunSkipReason::lockUnavailable:
            return "Vostrel could not open its run lock.";
        case RunSkipReason::logUnavailable:
            return sentences::logUnavailable;
        case RunSkipReason::previewOutdated:
            return sentences::previewOutdated;
        case RunSkipReason::previewExpired:
            return sentences::previewExpired;
        case RunSkipReason::stopped:
            return sentences::stoppedWhilePlanning;
        case RunSkipReason::unknown:
            break;
    }
    return "Not run.";
}

}  // namespace vostrel
