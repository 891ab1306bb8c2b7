#pragma once

#include "cleaning/CleanupPlanner.h"
#include "cli/Output.h"
#include "rules/RuleBook.h"

namespace vostrel::cli {

/// One rule with all its terms, for people.
void showRule(Output& output, const Rule& rule, const CleanupPlanner& planner);

/// The whole rule book for people, with what could not be read of it.
void showRuleBook(Output& output, const RuleBook& book, const CleanupPlanner& planner);

}  // namespace vostrel::cli
