#pragma once

#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "base/Date.h"
#include "platform/RunningApplications.h"

namespace vostrel {

/// The running applications, asked of the system again only after `interval`. Thread-safe.
class RunningAppsSnapshot {
public:
    /// The provider outlives the object.
    RunningAppsSnapshot(const RunningAppsProviding& from, Duration howLong) : provider(from), interval(howLong) {}

    /// Nothing when the system could not tell.
    [[nodiscard]] std::optional<std::set<std::string>> identifiers(Date now);

private:
    struct Reading {
        Date readAt;
        std::optional<std::set<std::string>> identifiers;
    };

    const RunningAppsProviding& provider;
    Duration interval;
    std::mutex lock;
    std::optional<Reading> last;
};

}  // namespace vostrel
