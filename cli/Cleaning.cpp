#include "cli/Cleaning.h"

#include <algorithm>

namespace vostrel::cli {

Cleaning::Cleaning(Session& in)
    : session(in),
      operations(in.places.home),
      planner(in.planner()),
      executor{
          .fileOps = operations, .guards = in.guards, .runningApps = apps, .catalog = in.catalog, .clock = in.clock},
      runner{.reader = in.capacityReader,
             .planner = planner,
             .executor = executor,
             .runningApps = apps,
             .log = in.log,
             .lock = in.runLock,
             .clock = in.clock} {}

CleanupRunner::Present Cleaning::presentOf(const Rule& rule) const {
    CleanupRunner::Present present;
    // The user started it: pausing is about what runs by itself.
    present.isPaused = [] { return false; };
    present.currentRule = [this, id = rule.id]() -> std::optional<Rule> {
        const auto book = session.rules.load();
        if (!book) return std::nullopt;
        const auto found = std::ranges::find(book->rules, id, &Rule::id);
        return found == book->rules.end() ? std::nullopt : std::optional(*found);
    };
    return present;
}

}  // namespace vostrel::cli
