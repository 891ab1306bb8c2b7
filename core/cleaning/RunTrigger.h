#pragma once

#include "rules/ApprovalKey.h"

namespace vostrel {

/// What started a run.
enum class RunTrigger {
    manual,     ///< the user, from the rule's preview
    cleanNow,   ///< the user, for every approved rule at once
    schedule,   ///< the clock
    belowLine,  ///< free space that fell below the user's line
    appQuit,    ///< an application that quit
    unknown,    ///< something that this version does not know
};

/// Whether the run wants an approval of the rule's folders as they are: every one but a manual run, which is its own
/// approval, since the user has just looked at the preview.
[[nodiscard]] bool needsApproval(RunTrigger trigger);

/// Whether nobody asked for the run when it began, so that pausing automatic cleaning holds for it. What started a run
/// of an unknown trigger nobody can tell; it counts as unattended.
[[nodiscard]] bool isUnattended(RunTrigger trigger);

/// Whether an approval that holds covers runs started so: a run that a trigger of the rule starts only when the
/// approval names such a trigger, what the user starts always, and an unknown one never.
[[nodiscard]] bool isPermitted(RunTrigger trigger, const ApprovalKey& approval);

}  // namespace vostrel
