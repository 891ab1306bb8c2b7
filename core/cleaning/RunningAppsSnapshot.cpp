#include "cleaning/RunningAppsSnapshot.h"

namespace vostrel {

std::optional<std::set<std::string>> RunningAppsSnapshot::identifiers(Date now) {
    const std::lock_guard guard(lock);
    // After a clock that went back, a reading would stay young for as long as it went.
    const bool isFresh = last && now >= last->readAt && now - last->readAt < interval;
    if (!isFresh) last = Reading{now, provider.runningIdentifiers()};
    return last->identifiers;
}

}  // namespace vostrel
