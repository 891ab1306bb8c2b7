#include "cleaning/RunTrigger.h"

#include <algorithm>
#include <variant>

namespace vostrel {

namespace {

bool namesOneOf(const ApprovalKey& approval, bool (*isSuch)(const RuleTrigger&)) {
    return std::ranges::any_of(approval.unattendedTriggers, isSuch);
}

}  // namespace

bool needsApproval(RunTrigger trigger) {
    return trigger != RunTrigger::manual;
}

bool isUnattended(RunTrigger trigger) {
    return trigger != RunTrigger::manual && trigger != RunTrigger::cleanNow;
}

bool isPermitted(RunTrigger trigger, const ApprovalKey& approval) {
    switch (trigger) {
        case RunTrigger::manual:
        case RunTrigger::cleanNow:
            return true;
        case RunTrigger::schedule:
            return namesOneOf(approval, [](const RuleTrigger& each) { return timeTriggerKey(each).has_value(); });
        case RunTrigger::belowLine:
            return namesOneOf(approval,
                              [](const RuleTrigger& each) { return std::holds_alternative<BelowLineTrigger>(each); });
        case RunTrigger::appQuit:
            return namesOneOf(
                approval, [](const RuleTrigger& each) { return std::holds_alternative<WhenAppQuitsTrigger>(each); });
        case RunTrigger::unknown:
            break;
    }
    return false;
}

}  // namespace vostrel
