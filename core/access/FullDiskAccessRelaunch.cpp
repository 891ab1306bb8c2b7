#include "access/FullDiskAccessRelaunch.h"

namespace vostrel {

bool FullDiskAccessRelaunch::begin() {
    if (current == Phase::launching) return false;
    current = Phase::launching;
    return true;
}

std::optional<FullDiskAccessRelaunch::Step> FullDiskAccessRelaunch::finished(Start start) {
    if (current != Phase::launching) return std::nullopt;
    if (start == Start::started) return Step::quitThisCopy;
    current = Phase::failed;
    return Step::resumeWalks;
}

}  // namespace vostrel
