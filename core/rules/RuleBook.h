#pragma once

#include <cstddef>
#include <set>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"
#include "rules/ScheduleState.h"
#include "stores/JSONValue.h"

namespace vostrel {

class PresetCatalog;

/// The user's rules in their order, and when they last ran.
///
/// Nothing that its file held is lost: a rule that could not be read is kept verbatim and written back after the
/// others until the user discards it, and so are keys of the book that this version does not know.
class RuleBook {
public:
    RuleBook() = default;
    explicit RuleBook(std::vector<Rule> itsRules, ScheduleState itsSchedule = {});

    std::vector<Rule> rules;
    ScheduleState schedule;
    std::vector<JSONValue> unreadableRules;
    std::vector<JSONMember> unknownMembers;

    [[nodiscard]] std::size_t unreadableCount() const { return unreadableRules.size(); }
    [[nodiscard]] const Rule* rule(Uuid id) const;

    /// False, and nothing added, when the book holds a rule with that id.
    bool add(Rule rule);
    /// Replaces the rule with that id; false when there is none. When it is enabled by this, or its triggers change,
    /// they count from now on, so that nothing overdue starts at once.
    bool update(Rule rule, Date now);
    /// Removes the rule and its schedule; false when there is none.
    bool remove(Uuid id);
    /// Moves the rules at these places, in their order, in front of the rule that is at `target` now (or to the end).
    void move(const std::set<std::size_t>& places, std::size_t target);
    /// The only way in which unreadable rules are ever dropped.
    void discardUnreadableRules() { unreadableRules.clear(); }

    /// Stores the approval of a preview in the book's rule, whose triggers count from now on. False, and nothing
    /// changed, when the plan is not of that rule, opened no root or is not approvable now, or when the rule is gone or
    /// was changed since it was previewed.
    [[nodiscard]] bool approvePreview(const Rule& previewed, const CleanupPlan& plan, const PresetCatalog& catalog,
                                      Date now);

    friend bool operator==(const RuleBook&, const RuleBook&) = default;

private:
    [[nodiscard]] Rule* find(Uuid id);
    void countTriggersFrom(Date now, const Rule& rule);
};

}  // namespace vostrel
