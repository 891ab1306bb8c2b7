#include <memory>
#include <utility>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/PlanDisplay.h"
#include "cli/RulePreview.h"
#include "cli/Session.h"

namespace vostrel::cli {

namespace {

using Style = Output::Style;

enum class Approving { no, yes };

struct PreviewOptions {
    std::string rule;
    bool approves = false;
};

CommandResult approve(Session& session, const Rule& rule, const CleanupPlan& plan) {
    if (session.output.finish() != 0) return failed("Nothing was approved, for the preview could not be shown.");
    const auto saved = session.rules.change([&](RuleBook& book) -> CommandResult {
        if (Interrupt::requested()) return failed(Interrupt::sentence);
        if (book.approvePreview(rule, plan, session.catalog, session.clock())) return {};
        return failed(
            "The rule was changed or removed while it was previewed, or the preview is too old. Preview it again.");
    });
    return saved;
}

/// What an approval of this rule means for it.
const char* approvalMeaning(const Rule& rule) {
    if (!rule.hasUnattendedTrigger()) return "Approved. The rule has no trigger, so it does nothing by itself.";
    if (!rule.enabled) return "Approved. The rule is disabled, so it does nothing by itself.";
    return "Approved: the rule may do this by itself while it and its folders stay as they are.";
}

CommandResult preview(Session& session, const GlobalOptions& options, const PreviewOptions& wanted) {
    const auto shown = previewRule(session, options, wanted.rule);
    if (!shown) return std::unexpected(shown.error());
    const auto& [rule, plan] = *shown;

    const bool wasApproved = rule.approval == rule.approvalKey(plan.rootIdentities(), session.catalog);
    if (wanted.approves) {
        if (auto approved = approve(session, rule, plan); !approved) return approved;
    }
    session.output.line();
    if (wanted.approves || wasApproved) {
        session.output.line({{approvalMeaning(rule), Style::good}});
        if (rule.enabled && rule.hasUnattendedTrigger())
            session.output.line(
                {{"It does so while an agent runs: \"vostrel agent --install\" starts one for good.", Style::dim}});
    } else {
        session.output.line({"Not approved: the rule does nothing by itself. To approve what it would do:"});
        session.output.line({"  " + session.approvingCommand(rule)});
    }
    return session.output.document(documentOf(plan, wanted.approves || wasApproved));
}

}  // namespace

void addPreviewCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("preview", "What a rule would remove now, what it would leave alone and why");
    const auto wanted = std::make_shared<PreviewOptions>();
    command->add_option("rule", wanted->rule, "The rule: its id, a beginning of it, or its name")
        ->type_name("RULE")
        ->required();
    command->add_flag("--approve", wanted->approves, "Let the rule do this by itself from now on");
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return preview(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
