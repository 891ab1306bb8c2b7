#pragma once

#include "cleaning/CleanupExecutor.h"
#include "cleaning/CleanupPlanner.h"
#include "cleaning/CleanupRunner.h"
#include "cleaning/SystemFileOperations.h"
#include "cli/Session.h"
#include "platform/RunningApplications.h"

namespace vostrel::cli {

/// What cleans in a session's home: the runner and all that it works with.
class Cleaning {
public:
    /// The session outlives the object.
    explicit Cleaning(Session& in);
    Cleaning(const Cleaning&) = delete;
    Cleaning& operator=(const Cleaning&) = delete;
    ~Cleaning() = default;

    /// What the runner may ask of this rule while it runs: as it is in the rule book then.
    [[nodiscard]] CleanupRunner::Present presentOf(const Rule& rule) const;

private:
    Session& session;
    SystemFileOperations operations;
    SystemRunningApps apps;
    CleanupPlanner planner;
    CleanupExecutor executor;

public:
    const CleanupRunner runner;
};

}  // namespace vostrel::cli
