#include "cli/Session.h"

#include "platform/SystemKind.h"

namespace vostrel::cli {

namespace {

std::unique_ptr<const FullDiskAccessChecking> accessChecker(const Places& places) {
    if (systemKind() == SystemKind::macOS) return std::make_unique<SystemFullDiskAccess>(places.accountHome);
    return std::make_unique<FixedFullDiskAccess>(true);
}

}  // namespace

namespace {

GuardSurroundings surroundingsOf(const Places& places) {
    auto surroundings = GuardSurroundings::of(places.home, places.accountHome, places.environment);
    surroundings.ownFolders = {places.data, SettingsStore::defaultDirectory(places.home, places.environment)};
    return surroundings;
}

}  // namespace

Session::Session(Output& messages, Clock present, Places where)
    : output(messages),
      clock(std::move(present)),
      places(std::move(where)),
      guards(surroundingsOf(places)),
      resolver(places.home, defaults, guards),
      rules(places.data, clock, output),
      settings(places.data, clock, output),
      fullDiskAccess(accessChecker(places)),
      log(places.data / "Log"),
      runLock(places.data / "run.lock") {}

CleanupPlanner Session::planner() const {
    return {.guards = guards, .resolver = resolver, .catalog = catalog, .clock = clock};
}

SystemSpaceScanner Session::spaceScanner() const {
    return {.home = places.home,
            .guards = guards,
            .fullDiskAccess = *fullDiskAccess,
            .capacityReader = capacityReader,
            .clock = clock};
}

SystemFinderScanner Session::finderScanner() const {
    return {.home = places.home, .guards = guards, .fullDiskAccess = *fullDiskAccess, .clock = clock};
}

SpaceMonitor Session::monitor(const AppSettings& chosen) const {
    return {capacityReader, places.home, chosen};
}

std::string Session::approvingCommand(const Rule& rule) const {
    constexpr std::size_t enoughOfAnID = 8;
    return "vostrel preview " + rule.id.text().substr(0, enoughOfAnID) + " --approve" + places.options;
}

}  // namespace vostrel::cli
