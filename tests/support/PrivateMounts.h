#pragma once

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

#include <functional>
#include <thread>

namespace vostrel {

/// Runs a test's steps on a thread with mounts of its own, so that it may mount and cover folders without anyone else
/// seeing it. False, and nothing run, where the system does not allow that.
[[nodiscard]] inline bool withPrivateMounts([[maybe_unused]] const std::function<void()>& steps) {
    bool ran = false;
#ifdef __linux__
    std::thread([&] {
        if (::unshare(CLONE_FS | CLONE_NEWNS) != 0) return;
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return;
        ran = true;
        steps();
    }).join();
#endif
    return ran;
}

}  // namespace vostrel
