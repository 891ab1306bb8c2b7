#include "cli/Cleaning.h"

#include <filesystem>
#include <system_error>

namespace vostrel::cli {

Cleaning::Cleaning(Session& in)
    : session(in),
      operations(in.places.home, in.clock),
      planner(in.planner()),
      executor{
          .fileOps = operations, .guards = in.guards, .runningApps = apps, .catalog = in.catalog, .clock = in.clock},
      runner{.reader = in.capacityReader,
             .planner = planner,
             .executor = executor,
             .runningApps = apps,
             .log = in.log,
             .lock = in.runLock,
             .clock = in.clock} {
    // The run lock lies in it; where it cannot be made, the run says that.
    std::error_code ignored;
    std::filesystem::create_directories(in.places.data, ignored);
}

CleanupRunner::Present Cleaning::presentOf(const Rule& rule) const {
    CleanupRunner::Present present;
    // The user started it: pausing is about what runs by itself.
    present.isPaused = [] { return false; };
    // Where the book cannot be read, what was read last holds.
    present.currentRule = [this, id = rule.id, last = std::optional(rule)]() mutable {
        if (const auto book = session.rules.asItIs()) {
            const Rule* const found = book->rule(id);
            last = found ? std::optional(*found) : std::nullopt;
        }
        return last;
    };
    return present;
}

}  // namespace vostrel::cli
