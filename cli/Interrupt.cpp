#include "cli/Interrupt.h"

#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction is POSIX, not C++

#include <atomic>

namespace vostrel::cli {

namespace {

std::atomic<bool> stopRequested = false;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): a handler's
static_assert(std::atomic<bool>::is_always_lock_free);

/// A call that the signal interrupts goes on.
void listenTo(int signal, int flags) {
    struct sigaction action = {};
    action.sa_handler = [](int) { stopRequested = true; };
    action.sa_flags = flags | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

/// As nohup has it.
bool isIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void Interrupt::listen() {
    // After the first of these the system's own action is in force again.
    listenTo(SIGINT, static_cast<int>(SA_RESETHAND));
    listenTo(SIGTERM, static_cast<int>(SA_RESETHAND));
    // Both the system and the shell may send it when a terminal goes.
    if (!isIgnored(SIGHUP)) listenTo(SIGHUP, 0);
}

bool Interrupt::requested() {
    return stopRequested;
}

}  // namespace vostrel::cli
