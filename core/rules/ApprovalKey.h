#pragma once

#include <optional>
#include <set>
#include <string>

#include "filesystem/RootIdentity.h"
#include "rules/CleanupAction.h"
#include "rules/RuleFilter.h"
#include "rules/RuleTarget.h"
#include "rules/RuleTrigger.h"
#include "stores/JSONValue.h"

namespace vostrel {

/// What the user approved: everything about a rule that decides what goes and when, and the folders that the preview
/// opened. A rule is approved while the key it stores equals the one that `Rule::approvalKey` makes of it now.
struct ApprovalKey {
    RuleTarget target;
    RuleFilter filter;
    CleanupAction action = CleanupAction::trash;
    std::set<RuleTrigger> unattendedTriggers;
    std::set<std::string> pauseWhileRunning;
    std::set<RootIdentity> roots;
    /// What the target stood for (`definition` of a `RuleTarget`).
    std::string definition;
    /// In a key of an earlier version, which named its root otherwise. It is kept and written back, and since no key
    /// made now has one, such a key equals none: the rule wants a new preview.
    std::optional<JSONValue> rootFileID;

    friend bool operator==(const ApprovalKey&, const ApprovalKey&) = default;
};

}  // namespace vostrel
