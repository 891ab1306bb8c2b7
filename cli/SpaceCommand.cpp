#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SpaceDisplay.h"
#include "monitor/SpaceMonitor.h"

namespace vostrel::cli {

namespace {

CommandResult showSpace(Session& session) {
    const auto keeper = session.settings.load();
    if (!keeper) return std::unexpected(keeper.error());
    SpaceMonitor monitor = session.monitor(keeper->settings());
    const auto reading = monitor.tick(session.clock(), SpaceMonitor::Refresh::forced);
    if (!reading) return failed(reading.error().sentence(session.places.home));
    session.output.line({{"The disk of " + session.places.home.native(), Output::Style::bold}});
    showReading(session.output, *reading, keeper->settings());
    return session.output.document(documentOf(*reading));
}

}  // namespace

void addSpaceCommand(CLI::App& app, Command& chosen) {
    app.add_subcommand("space", "How much of the disk is free, and how that stands to your line")
        ->fallthrough()
        ->callback([&chosen] { chosen = inSession(showSpace); });
}

}  // namespace vostrel::cli
