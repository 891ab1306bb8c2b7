#pragma once

#include "cli/Output.h"
#include "filesystem/PathGuards.h"
#include "rules/CleanupPlan.h"
#include "stores/JSONValue.h"

namespace vostrel::cli {

/// A preview for people: the largest items that would go, what stays and why, and the total.
void showPlan(Output& output, const PathGuards& guards, const CleanupPlan& plan);

/// A preview as its JSON document; `isApproved` tells whether the rule's stored approval is for this very plan.
[[nodiscard]] JSONValue documentOf(const CleanupPlan& plan, bool isApproved);

}  // namespace vostrel::cli
