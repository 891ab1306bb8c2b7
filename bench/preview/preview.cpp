// Plans a rule on every item of a folder inside a home folder, as a preview does, and prints what it found:
//   preview HOME FOLDER [HELPERS]
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "cleaning/CleanupPlanner.h"
#include "filesystem/GuardSurroundings.h"
#include "filesystem/PathGuards.h"
#include "platform/UserAccount.h"
#include "rules/PresetCatalog.h"
#include "rules/TargetResolver.h"
#include "stores/DefaultsReading.h"

int main(int count, char** arguments) {
    using namespace vostrel;
    if (count < 3) {
        fmt::print(stderr, "usage: preview HOME FOLDER [HELPERS]\n");
        return 2;
    }
    const std::filesystem::path home = std::filesystem::canonical(arguments[1]);
    GuardSurroundings surroundings = GuardSurroundings::of(home, {});
    surroundings.accountHome.clear();
    const PathGuards guards(surroundings);
    const FixedDefaults defaults({});
    const TargetResolver resolver(home, defaults, guards, {effectiveUserID(), std::filesystem::temp_directory_path()});
    const PresetCatalog catalog;
    CleanupPlanner planner{.guards = guards, .resolver = resolver, .catalog = catalog};
    if (count > 3) planner.helpers = static_cast<unsigned>(std::atoi(arguments[3]));

    Rule rule;
    rule.target = FolderTarget{std::filesystem::canonical(arguments[2])};
    rule.filter.excludeGlobs = {"*.keep"};
    const auto plan = planner.plan(rule, Date::now() + std::chrono::days(1));
    if (!plan) {
        fmt::print(stderr, "{}\n", plan.error().sentence);
        return 1;
    }
    fmt::print("items {} skipped {} bytes {}\n", plan->items.size(), plan->skipped.size(), plan->totalBytes());
    std::fflush(stdout);
    std::_Exit(0);  // taking the plan apart again is no part of planning
}
