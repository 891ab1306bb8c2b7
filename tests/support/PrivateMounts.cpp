#include "support/PrivateMounts.h"

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

#include <thread>

namespace vostrel {

bool withPrivateMounts([[maybe_unused]] const std::function<void()>& steps) {
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
