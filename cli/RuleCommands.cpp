#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/Amounts.h"
#include "cli/Commands.h"
#include "cli/ParsedOption.h"
#include "cli/RuleDisplay.h"
#include "cli/RuleOptions.h"
#include "cli/RuleSearch.h"
#include "cli/RuleText.h"
#include "cli/Session.h"
#include "rules/RuleFields.h"

namespace vostrel::cli {

namespace {

using Style = Output::Style;

std::string quoted(const Rule& rule) {
    return "\"" + rule.name + "\"";
}

CommandResult listRules(Session& session) {
    const auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    showRuleBook(session.output, *book, session.planner());
    return session.output.document(
        JSONObject{{"rules", encodeJSON(book->rules)}, {"unreadable", JSONValue(book->unreadableRules)}});
}

CommandResult show(Session& session, const std::string& wanted) {
    const auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    const auto found = findRule(*book, wanted);
    if (!found) return std::unexpected(found.error());
    showRule(session.output, **found, session.planner());
    return session.output.document(encodeJSON(**found));
}

/// What keeps the rule's folders from being cleaned now. A preset's may come when somebody uses what it is about.
std::optional<std::string> folderProblem(const Session& session, const Rule& rule) {
    const auto folders = session.planner().currentRoots(rule);
    if (folders || folders.error().kind == PlanError::Kind::presetNotFound) return std::nullopt;
    return folders.error().sentence;
}

CommandResult check(Session& session, const std::string& wanted) {
    const auto book = session.rules.load();
    if (!book) return std::unexpected(book.error());
    const auto found = findRule(*book, wanted);
    if (!found) return std::unexpected(found.error());
    auto problems = (*found)->validationProblems(session.guards, session.resolver, session.catalog);
    if (auto problem = folderProblem(session, **found);
        problem && std::ranges::find(problems, *problem) == problems.end())
        problems.push_back(std::move(*problem));
    if (auto written = session.output.document(JSONObject{{"problems", encodeJSON(problems)}}); !written)
        return written;
    if (!problems.empty())
        return std::unexpected(Failure{.sentences = std::move(problems), .document = Failure::Document::written});
    session.output.line({"There is nothing wrong with the rule " + quoted(**found) + "."});
    return {};
}

void suggestTriggers(Session& session, const Rule& rule) {
    const Preset* preset = session.catalog.presetOf(rule.target);
    if (!preset || preset->suggestedTriggers.empty() || !rule.triggers.empty()) return;
    session.output.line({"The preset suggests to run it " + triggersText(preset->suggestedTriggers) + "."});
}

CommandResult add(Session& session, const RuleOptions& options) {
    const auto rule = options.rule(session.clock(), session.catalog);
    if (!rule) return std::unexpected(rule.error());
    auto problems = rule->validationProblems(session.guards, session.resolver, session.catalog);
    if (!problems.empty()) return std::unexpected(Failure{.sentences = std::move(problems)});

    const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
        book.add(*rule);
        return {};
    });
    if (!saved) return saved;
    showRule(session.output, *rule, session.planner());
    session.output.line();
    suggestTriggers(session, *rule);
    session.output.line(
        {{"The rule is saved. It removes nothing by itself until you approve what it would do:", Style::good}});
    session.output.line({"  " + session.approvingCommand(*rule)});
    return session.output.document(encodeJSON(*rule));
}

/// Finds the rule in the book as it is stored now, lets `change` work on both, and says what `change` did.
CommandResult changeRule(Session& session, const std::string& wanted,
                         const std::function<std::expected<std::string, Failure>(RuleBook&, Rule)>& change) {
    std::string done;
    JSONValue document;
    const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
        const auto found = findRule(book, wanted);
        if (!found) return std::unexpected(found.error());
        const Rule before = **found;
        auto changed = change(book, before);
        if (!changed) return std::unexpected(std::move(changed.error()));
        done = std::move(*changed);
        const Rule* const after = book.rule(before.id);
        document = encodeJSON(after == nullptr ? before : *after);
        return {};
    });
    if (!saved) return saved;
    session.output.line({done});
    return session.output.document(document);
}

CommandResult remove(Session& session, const std::string& wanted) {
    return changeRule(session, wanted, [](RuleBook& book, const Rule& rule) {
        book.remove(rule.id);
        return "The rule " + quoted(rule) + " is removed. No file was touched.";
    });
}

enum class Enabling { on, off };

CommandResult enable(Session& session, const std::string& wanted, Enabling enabling) {
    return changeRule(session, wanted, [&](RuleBook& book, Rule rule) {
        rule.enabled = enabling == Enabling::on;
        book.update(rule, session.clock());
        return fmt::format("The rule {} is {}.", quoted(rule), rule.enabled ? "enabled" : "disabled");
    });
}

/// Places count from 1, and are those that the rule has afterwards.
CommandResult move(Session& session, const std::string& wanted, std::size_t position) {
    return changeRule(session, wanted, [&](RuleBook& book, const Rule& rule) -> std::expected<std::string, Failure> {
        const auto count = book.rules.size();
        if (position < 1 || position > count)
            return failed(fmt::format("There is no place {}: the rules stand at 1 to {}.", position, count));
        const auto from = static_cast<std::size_t>(book.rule(rule.id) - book.rules.data());
        const auto to = position - 1;
        book.move({from}, to > from ? to + 1 : to);
        return fmt::format("The rule {} is number {} now.", quoted(rule), position);
    });
}

CommandResult discardUnreadable(Session& session) {
    std::size_t count = 0;
    const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
        count = book.unreadableCount();
        book.discardUnreadableRules();
        return {};
    });
    if (!saved) return saved;
    session.output.line(
        {fmt::format("{} dropped.", counted(static_cast<std::int64_t>(count), "rule that could not be read is",
                                            "rules that could not be read are"))});
    return session.output.document(JSONObject{{"discarded", count}});
}

/// A command about one rule.
template <class Action>
CLI::App* addCommandOnRule(CLI::App& group, Command& chosen, const char* name, const char* description,
                           const Action& action) {
    CLI::App* const command = group.add_subcommand(name, description)->fallthrough();
    const auto wanted = std::make_shared<std::string>();
    command->add_option("RULE", *wanted, "Its id, a beginning of it, or the rule's name")->required();
    command->callback([&chosen, wanted, action = std::decay_t<const Action&>(action)] {
        chosen = inSession([wanted, action](Session& session) { return action(session, *wanted); });
    });
    return command;
}

void addAdd(CLI::App& group, Command& chosen) {
    CLI::App* const command = group.add_subcommand("add", "Make a rule")->fallthrough();
    const auto options = std::make_shared<RuleOptions>();
    options->addTo(*command);
    command->callback(
        [&chosen, options] { chosen = inSession([options](Session& session) { return add(session, *options); }); });
}

void addMove(CLI::App& group, Command& chosen) {
    const auto position = std::make_shared<int>(0);
    CLI::App* const command = addCommandOnRule(group, chosen, "move", "Give a rule another place in the list",
                                               [position](Session& session, const std::string& wanted) {
                                                   return move(session, wanted, static_cast<std::size_t>(*position));
                                               });
    addParsed(
        *command, "POSITION", "", parseCount, [position](int value) { *position = value; }, "The place, counted from 1")
        ->required();
}

}  // namespace

void addRuleCommands(CLI::App& app, Command& chosen) {
    CLI::App& group = *app.add_subcommand("rule", "The rules: what to clean, and when")->fallthrough();
    group.require_subcommand(0, 1);
    addAdd(group, chosen);
    group.add_subcommand("list", "All rules")->fallthrough()->callback([&chosen] { chosen = inSession(listRules); });
    addCommandOnRule(group, chosen, "show", "One rule with all its terms", show);
    addCommandOnRule(group, chosen, "check", "Whether a rule makes sense here and now", check);
    addCommandOnRule(group, chosen, "remove", "Forget a rule", remove);
    addCommandOnRule(group, chosen, "enable", "Let a rule run by itself",
                     [](Session& session, const std::string& wanted) { return enable(session, wanted, Enabling::on); });
    addCommandOnRule(
        group, chosen, "disable", "Keep a rule, but do not let it run by itself",
        [](Session& session, const std::string& wanted) { return enable(session, wanted, Enabling::off); });
    addMove(group, chosen);
    group.add_subcommand("discard-unreadable", "Drop the rules that could not be read")
        ->fallthrough()
        ->callback([&chosen] { chosen = inSession(discardUnreadable); });
}

}  // namespace vostrel::cli
