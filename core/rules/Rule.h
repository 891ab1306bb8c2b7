#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "filesystem/RootIdentity.h"
#include "rules/ApprovalKey.h"
#include "rules/CleanupAction.h"
#include "rules/RuleFilter.h"
#include "rules/RuleTarget.h"
#include "rules/RuleTrigger.h"

namespace vostrel {

class PathGuards;
class PresetCatalog;
class TargetResolver;

/// What to clean, which items of it qualify, how to remove them, and when to run unattended.
///
/// A rule runs unattended only while the approval it stores still says what it does; editing what matters withdraws it
/// by itself, since the keys then differ.
struct Rule {
    Uuid id;
    std::string name;
    /// A disabled rule never runs unattended.
    bool enabled = true;
    RuleTarget target;
    RuleFilter filter;
    CleanupAction action = CleanupAction::trash;
    std::vector<RuleTrigger> triggers;
    /// Bundle identifiers of applications while which the rule waits.
    std::vector<std::string> pauseWhileRunning;
    std::optional<ApprovalKey> approval;
    Date createdAt;

    /// Whether some trigger starts it without the user.
    [[nodiscard]] bool hasUnattendedTrigger() const;
    /// What an approval of the rule as it is would say, for a preview that opened these roots.
    [[nodiscard]] ApprovalKey approvalKey(const std::set<RootIdentity>& roots, const PresetCatalog& catalog) const;
    /// Whether the approval that the rule stores says what the rule does now. That its folders are still the approved
    /// ones shows only once they are open.
    [[nodiscard]] bool approvalHolds(const PresetCatalog& catalog) const;
    /// The pause list as approvals hold it: without blanks around or between entries, and without order.
    [[nodiscard]] static std::set<std::string> normalizedPauseList(const std::vector<std::string>& list);
    /// What is wrong with a rule that cannot be saved as it is, one sentence each; empty when it is valid.
    ///
    /// Reads the settings that the target depends on and may ask the disk about its folders: an interface calls it on
    /// a thread of its own. Everything it is given may be used on several threads.
    [[nodiscard]] std::vector<std::string> validationProblems(const PathGuards& guards, const TargetResolver& resolver,
                                                              const PresetCatalog& catalog) const;

    friend bool operator==(const Rule&, const Rule&) = default;
};

}  // namespace vostrel
