#include "rules/RuleBook.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace vostrel {

namespace {

/// The rule's triggers that come round by the clock, in whatever order it lists them.
std::set<std::string> clockOf(const Rule& rule) {
    std::set<std::string> keys;
    for (const RuleTrigger& trigger : rule.triggers) {
        if (auto key = timeTriggerKey(trigger)) keys.insert(*std::move(key));
    }
    return keys;
}

}  // namespace

RuleBook::RuleBook(std::vector<Rule> itsRules, ScheduleState itsSchedule)
    : rules(std::move(itsRules)), schedule(std::move(itsSchedule)) {}

const Rule* RuleBook::rule(Uuid id) const {
    const auto found = std::ranges::find(rules, id, &Rule::id);
    return found == rules.end() ? nullptr : &*found;
}

Rule* RuleBook::find(Uuid id) {
    const auto found = std::ranges::find(rules, id, &Rule::id);
    return found == rules.end() ? nullptr : &*found;
}

bool RuleBook::add(Rule rule) {
    if (find(rule.id)) return false;
    rules.push_back(std::move(rule));
    return true;
}

bool RuleBook::update(Rule rule, Date now) {
    Rule* const stored = find(rule.id);
    if (!stored) return false;
    const bool becomesEnabled = rule.enabled && !stored->enabled;
    if (becomesEnabled || clockOf(rule) != clockOf(*stored)) countTriggersFrom(now, rule);
    *stored = std::move(rule);
    return true;
}

bool RuleBook::remove(Uuid id) {
    if (std::erase_if(rules, [&](const Rule& rule) { return rule.id == id; }) == 0) return false;
    schedule.forget(id);
    return true;
}

void RuleBook::move(const std::set<std::size_t>& places, std::size_t target) {
    std::vector<Rule> moved;
    std::vector<Rule> before;
    std::vector<Rule> after;
    for (std::size_t place = 0; place < rules.size(); ++place) {
        auto& whole = place < target ? before : after;
        auto& part = places.contains(place) ? moved : whole;
        part.push_back(std::move(rules[place]));
    }
    rules = std::move(before);
    std::ranges::move(moved, std::back_inserter(rules));
    std::ranges::move(after, std::back_inserter(rules));
}

bool RuleBook::approvePreview(const Rule& previewed, const CleanupPlan& plan, const PresetCatalog& catalog, Date now) {
    if (plan.ruleID != previewed.id || plan.roots.empty() || !plan.isApprovable(now)) return false;
    Rule* const stored = find(plan.ruleID);
    if (!stored) return false;
    ApprovalKey key = stored->approvalKey(plan.rootIdentities(), catalog);
    if (key != previewed.approvalKey(plan.rootIdentities(), catalog)) return false;
    stored->approval = std::move(key);
    countTriggersFrom(now, *stored);
    return true;
}

void RuleBook::countTriggersFrom(Date now, const Rule& rule) {
    schedule.forgetTriggers(rule.id);
    for (const RuleTrigger& trigger : rule.triggers)
        schedule.setCountsFrom(now, rule.id, trigger);
}

}  // namespace vostrel
