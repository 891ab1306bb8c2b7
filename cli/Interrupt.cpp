#include "cli/Interrupt.h"

#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction is POSIX, not C++

#include <atomic>

namespace vostrel::cli {

namespace {

std::atomic<bool> stopRequested = false;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): a handler's
static_assert(std::atomic<bool>::is_always_lock_free);

}  // namespace

void Interrupt::listen() {
    struct sigaction action = {};
    action.sa_handler = [](int) { stopRequested = true; };
    // A call that the signal interrupts goes on; after the first signal the system's own action is in force again.
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool Interrupt::requested() {
    return stopRequested;
}

}  // namespace vostrel::cli
