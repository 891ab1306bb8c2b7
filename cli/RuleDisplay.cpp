#include "cli/RuleDisplay.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

#include "base/LocalTime.h"
#include "cli/RuleText.h"
#include "rules/RuleFields.h"

namespace vostrel::cli {

namespace {

using Style = Output::Style;
using Alignment = Output::Alignment;

Output::Text stateText(const Rule& rule, const CleanupPlanner& planner) {
    if (!rule.enabled) return {"disabled", Style::dim};
    const ApprovalState approval = approvalState(rule, planner);
    return {approvalText(approval), approval == ApprovalState::current ? Style::good : Style::plain};
}

/// What an unreadable rule calls itself, as far as that can be told, and why it could not be read.
std::string unreadableText(const JSONValue& value) {
    const auto* object = value.as<JSONObject>();
    const JSONValue* name = object == nullptr ? nullptr : object->find("name");
    const std::string* text = name == nullptr ? nullptr : name->as<std::string>();
    const auto decoded = decodeJSON<Rule>(value);
    return fmt::format("{}: {}", text == nullptr ? "a rule without a name" : "\"" + *text + "\"",
                       decoded ? "Another rule has its id." : decoded.error().text());
}

void showUnreadableRules(Output& output, const RuleBook& book) {
    const auto count = static_cast<std::int64_t>(book.unreadableCount());
    if (count == 0) return;
    output.line();
    output.line({{counted(count, "rule could not be read. It never runs, and is kept as it is:",
                          "rules could not be read. They never run, and are kept as they are:"),
                  Style::warning}});
    for (const JSONValue& value : book.unreadableRules)
        output.line({"  " + unreadableText(value)});
    output.line({{"\"vostrel rule discard-unreadable\" drops what cannot be read.", Style::dim}});
}

}  // namespace

void showRule(Output& output, const Rule& rule, const CleanupPlanner& planner) {
    output.line({{rule.name, Style::bold}});
    std::vector<Output::Row> rows = {
        {{"id", Style::dim}, rule.id.text()},
        {{"state", Style::dim},
         fmt::format("{}, {}", rule.enabled ? "enabled" : "disabled", approvalText(approvalState(rule, planner)))},
        {{"cleans", Style::dim}, targetText(rule.target)},
    };
    const Preset* preset = planner.catalog.presetOf(rule.target);
    if (preset != nullptr) {
        rows.push_back({"", preset->summary});
        const char* heldTo = "holds it to";
        for (const std::string& text : limitTexts(*preset))
            rows.push_back({{std::exchange(heldTo, ""), Style::dim}, text});
    }
    const char* label = "takes";
    for (const std::string& text : filterTexts(rule, preset))
        rows.push_back({{std::exchange(label, ""), Style::dim}, text});
    rows.push_back({{"action", Style::dim}, actionText(rule.action)});
    rows.push_back({{"runs", Style::dim}, triggersText(rule.triggers)});
    if (!rule.pauseWhileRunning.empty())
        rows.push_back({{"waits for", Style::dim}, fmt::format("{}", fmt::join(rule.pauseWhileRunning, ", "))});
    rows.push_back({{"made", Style::dim}, localTime(rule.createdAt)});
    output.table(rows, {Alignment::left, Alignment::left});
}

void showRuleBook(Output& output, const RuleBook& book, const CleanupPlanner& planner) {
    std::vector<Output::Row> rows = {
        {"", {"rule", Style::dim}, {"cleans", Style::dim}, {"runs", Style::dim}, {"state", Style::dim}}};
    for (const Rule& rule : book.rules) {
        rows.push_back({{std::to_string(rows.size()), Style::dim},
                        {rule.name, Style::bold},
                        targetText(rule.target),
                        triggersText(rule.triggers),
                        stateText(rule, planner)});
    }
    if (book.rules.empty()) {
        output.line({"There are no rules. \"vostrel rule add --help\" tells how one is made."});
    } else {
        output.table(rows, {Alignment::right, Alignment::left, Alignment::left, Alignment::left, Alignment::left});
    }
    showUnreadableRules(output, book);
}

}  // namespace vostrel::cli
