#include "cli/Interrupt.h"

#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction is POSIX, not C++
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <tuple>

namespace vostrel::cli {

namespace {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a handler's
std::atomic<bool> stopRequested = false;
/// What is written to the second comes out of the first.
std::array<int, 2> wakingPipe{-1, -1};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)
static_assert(std::atomic<bool>::is_always_lock_free);

void requestStop(int /*signal*/) {
    const int error = errno;
    stopRequested = true;
    std::ignore = ::write(wakingPipe[1], "", 1);  // a full pipe is readable all the same
    errno = error;
}

/// A call that the signal interrupts goes on.
void listenTo(int signal, int flags) {
    struct sigaction action = {};
    action.sa_handler = requestStop;
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
    if (::pipe(wakingPipe.data()) == 0) {
        for (const int end : wakingPipe) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
    }
    // After the first of these the system's own action is in force again.
    listenTo(SIGINT, static_cast<int>(SA_RESETHAND));
    listenTo(SIGTERM, static_cast<int>(SA_RESETHAND));
    // Both the system and the shell may send it when a terminal goes.
    if (!isIgnored(SIGHUP)) listenTo(SIGHUP, 0);
}

bool Interrupt::requested() {
    return stopRequested;
}

int Interrupt::descriptor() {
    return wakingPipe.front();
}

}  // namespace vostrel::cli
