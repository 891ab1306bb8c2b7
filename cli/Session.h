#pragma once

#include <memory>
#include <string>
#include <utility>

#include "access/FullDiskAccess.h"
#include "cleaning/CleanLog.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/RunLock.h"
#include "cli/CommandLine.h"
#include "cli/Output.h"
#include "cli/Places.h"
#include "cli/Program.h"
#include "cli/StoredRules.h"
#include "cli/StoredSettings.h"
#include "filesystem/PathGuards.h"
#include "finder/SystemFinderScanner.h"
#include "monitor/SpaceMonitor.h"
#include "rules/PresetCatalog.h"
#include "rules/TargetResolver.h"
#include "spacemap/SystemSpaceScanner.h"
#include "stores/DefaultsReading.h"

namespace vostrel::cli {

/// The long-lived objects of one home, which commands work with.
class Session {
public:
    Session(Output& messages, Clock present, Places where);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() = default;

    Output& output;
    const Clock clock;
    const Places places;
    const SystemDefaults defaults{};
    const PresetCatalog catalog = PresetCatalog::offered();
    const PathGuards guards;
    const TargetResolver resolver;
    const StoredRules rules;
    const StoredSettings settings;
    const SystemVolumeCapacityReader capacityReader{};
    /// Whether this process may read what macOS hides; always, where nothing is hidden.
    const std::unique_ptr<const FullDiskAccessChecking> fullDiskAccess;
    const CleanLog log;
    const RunLock runLock;

    [[nodiscard]] CleanupPlanner planner() const;

    /// It must not outlive the session.
    [[nodiscard]] SystemSpaceScanner spaceScanner() const;
    [[nodiscard]] SystemFinderScanner finderScanner() const;

    /// Measures the volume of the home folder. It must not outlive the session.
    [[nodiscard]] SpaceMonitor monitor(const AppSettings& chosen) const;

    /// The command line that previews the rule in the same places and approves what it would do.
    [[nodiscard]] std::string approvingCommand(const Rule& rule) const;
};

/// A command that wants the session of the home that the command line names.
template <class Action>
[[nodiscard]] Command inSession(Action action) {
    return [action = std::move(action)](Program& program) -> CommandResult {
        auto places = placesFor(program.options);
        if (!places) return std::unexpected(std::move(places.error()));
        // NOLINTNEXTLINE(misc-const-correctness): most actions change something of it
        Session session(program.output, Date::now, std::move(*places));
        return action(session);
    };
}

}  // namespace vostrel::cli
