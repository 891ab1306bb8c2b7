// Plans a rule that deletes every item of a folder inside a home folder, carries the plan out and prints the seconds
// that took, the planning aside:
//   bench_removal HOME FOLDER
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "cleaning/CleanupExecutor.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/SystemFileOperations.h"
#include "filesystem/GuardSurroundings.h"
#include "filesystem/PathGuards.h"
#include "platform/UserAccount.h"
#include "rules/PresetCatalog.h"
#include "rules/TargetResolver.h"
#include "stores/DefaultsReading.h"

int main(int count, char** arguments) {
    using namespace vostrel;
    if (count != 3) {
        fmt::print(stderr, "usage: bench_removal HOME FOLDER\n");
        return 2;
    }
    const std::filesystem::path home = std::filesystem::canonical(arguments[1]);
    GuardSurroundings surroundings = GuardSurroundings::of(home, {});
    surroundings.accountHome.clear();
    const PathGuards guards(surroundings);
    const FixedDefaults defaults({});
    const TargetResolver resolver(home, defaults, guards, {effectiveUserID(), std::filesystem::temp_directory_path()});
    const PresetCatalog catalog;
    // Tomorrow, so that files made a moment ago are not in use.
    const Clock clock = [] { return Date::now() + std::chrono::days(1); };
    CleanupPlanner planner{.guards = guards, .resolver = resolver, .catalog = catalog};

    Rule rule;
    rule.target = FolderTarget{std::filesystem::canonical(arguments[2])};
    rule.action = CleanupAction::deletePermanently;
    const auto plan = planner.plan(rule, clock());
    if (!plan) {
        fmt::print(stderr, "{}\n", plan.error().sentence);
        return 1;
    }
    SystemFileOperations operations(home);
    const SystemRunningApps apps;
    CleanupExecutor executor{.fileOps = operations, .guards = guards, .runningApps = apps, .catalog = catalog};
    executor.clock = clock;
    CleanupExecutor::Order order;
    order.action = rule.action;
    order.filter = rule.filter;
    const RunControl control;
    const auto start = std::chrono::steady_clock::now();
    const auto result = executor.execute(*plan, order, control);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    const bool isAllGone = std::ranges::all_of(
        result.outcomes, [](const ItemOutcome& outcome) { return outcome.status == ItemOutcome::Status::deleted; });
    if (!isAllGone || std::filesystem::is_empty(arguments[2]) == plan->items.empty()) {
        fmt::print(stderr, "not all of it was deleted\n");
        return 1;
    }
    fmt::print("{:.6f}\n", wall.count());
}
