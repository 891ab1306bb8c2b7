#include "platform/WaitMeter.h"

#include <sys/resource.h>

namespace vostrel {

namespace {

/// How often the thread has given up its processor of its own accord: it does so to wait.
std::int64_t timesWaited() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

}  // namespace

void WaitMeter::start() {
    atStart = timesWaited();
}

bool WaitMeter::hasWaitedSinceStart() const {
    return timesWaited() != atStart;
}

}  // namespace vostrel
