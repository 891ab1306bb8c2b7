#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

#include "cleaning/RunFields.h"
#include "cli/Agent.h"
#include "cli/AgentLock.h"
#include "cli/Commands.h"
#include "cli/RunDisplay.h"
#include "cli/Session.h"
#include "platform/BackgroundService.h"

namespace vostrel::cli {

namespace {

struct AgentOptions {
    bool isOnce = false;
    bool isInstalled = false;
    bool isRemoved = false;
};

CommandResult runOnce(Session& session, const AgentLock& lock) {
    Agent agent(session, lock);
    JSONArray documents;
    Failure failure;
    failure.document = Failure::Document::written;
    for (const RunReport& report : agent.once()) {
        documents.push_back(encodeJSON(report));
        if (report.status != RunStatus::skipped && isShort(report))
            failure.sentences.push_back(report.ruleName + ": " + shortfall(report));
    }
    if (documents.empty() && !agent.hadTrouble()) session.output.line({"No rule is due."});
    if (auto shown = session.output.document(JSONObject{{"reports", std::move(documents)}}); !shown) return shown;
    // What troubled it was said as it came.
    if (failure.sentences.empty() && !agent.hadTrouble()) return {};
    return std::unexpected(std::move(failure));
}

CommandResult install(Session& session, const GlobalOptions& options) {
    std::vector<std::string> arguments;
    if (options.home) arguments.insert(arguments.end(), {"--home", session.places.home});
    // The service does not know the variables of this shell.
    arguments.insert(arguments.end(), {"--data", session.places.data});
    arguments.emplace_back("agent");
    const auto file = installBackgroundService(arguments, session.places.accountHome, processEnvironment());
    if (!file) return failed(file.error());
    session.output.line({"Rules run by themselves from now on, and after every login."});
    session.output.line({{"The service is described in " + file->native(), Output::Style::dim}});
    return session.output.document(JSONObject{{"installed", true}});
}

CommandResult remove(Session& session) {
    const auto removed = removeBackgroundService(session.places.accountHome, processEnvironment());
    if (!removed) return failed(removed.error());
    session.output.line(
        {*removed ? "Rules no longer run by themselves." : "There is no service: rules do not run by themselves."});
    return session.output.document(JSONObject{{"installed", false}});
}

CommandResult agent(Session& session, const GlobalOptions& options, const AgentOptions& wanted) {
    if (wanted.isInstalled) return install(session, options);
    if (wanted.isRemoved) return remove(session);
    const auto lock = AgentLock::take(session.places.data);
    if (!lock) return std::unexpected(lock.error());
    if (wanted.isOnce) return runOnce(session, *lock);
    if (!session.output.isForPeople())
        return wrongCommandLine("An agent that keeps running prints no document; add --once.");
    return Agent(session, *lock).run();
}

}  // namespace

void addAgentCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("agent",
                                       "Runs rules by themselves: at their times, when space is low, when "
                                       "an application quits");
    const auto wanted = std::make_shared<AgentOptions>();
    auto* once = command->add_flag("--once", wanted->isOnce, "Look once, run what is due, and end");
    auto* installs =
        command->add_flag("--install", wanted->isInstalled, "Have the system run it, now and after every login");
    auto* removes = command->add_flag("--remove", wanted->isRemoved, "Undo --install");
    installs->excludes(once);
    removes->excludes(once)->excludes(installs);
    command->fallthrough()->callback([&chosen, wanted] {
        chosen = [wanted](Program& program) {
            return inSession([&](Session& session) { return agent(session, program.options, *wanted); })(program);
        };
    });
}

}  // namespace vostrel::cli
