#include "cli/Session.h"

namespace vostrel::cli {

Session::Session(Output& messages, Clock present, Places where)
    : output(messages),
      clock(std::move(present)),
      places(std::move(where)),
      guards(GuardSurroundings::of(places.home, places.accountHome, places.environment)),
      resolver(places.home, defaults, guards),
      rules(places.data, clock, output),
      settings(places.data, clock, output),
      log(places.data / "Log"),
      runLock(places.data / "run.lock") {}

CleanupPlanner Session::planner() const {
    return {.guards = guards, .resolver = resolver, .catalog = catalog, .clock = clock};
}

SpaceMonitor Session::monitor(const AppSettings& chosen) const {
    return {capacityReader, places.home, chosen};
}

std::string Session::approvingCommand(const Rule& rule) const {
    constexpr std::size_t enoughOfAnID = 8;
    return "vostrel preview " + rule.id.text().substr(0, enoughOfAnID) + " --approve" + places.options;
}

}  // namespace vostrel::cli
