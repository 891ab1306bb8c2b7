#include <fmt/format.h>

#include "access/FullDiskAccessGuide.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "platform/SystemKind.h"

namespace vostrel::cli {

namespace {

using Guide = FullDiskAccessGuide;

std::string_view storedName(Guide::State state) {
    switch (state) {
        case Guide::State::notAsked:
            return "notAsked";
        case Guide::State::paneOpened:
            return "paneOpened";
        case Guide::State::on:
            return "on";
    }
    return {};
}

std::string answer(Guide::State state) {
    if (systemKind() != SystemKind::macOS)
        return "This system has no Full Disk Access to grant: Vostrel may read whatever your account may read.";
    return state == Guide::State::on ? "Vostrel has Full Disk Access."
                                     : "Vostrel does not have Full Disk Access. To grant it:";
}

CommandResult showAccess(Session& session) {
    const bool granted = session.fullDiskAccess->hasFullDiskAccess();
    const auto state = Guide::state(granted, Guide::Pane::notOpened);
    session.output.line({answer(state)});
    JSONArray steps;
    for (const std::string_view step : Guide::steps(state)) {
        steps.emplace_back(step);
        session.output.line({fmt::format("  {}. {}", steps.size(), step)});
    }
    return session.output.document(
        JSONObject{{"granted", granted}, {"state", storedName(state)}, {"steps", std::move(steps)}});
}

}  // namespace

void addAccessCommand(CLI::App& app, Command& chosen) {
    app.add_subcommand("access", "Whether Full Disk Access is granted, and how to grant it")
        ->fallthrough()
        ->callback([&chosen] { chosen = inSession(showAccess); });
}

}  // namespace vostrel::cli
