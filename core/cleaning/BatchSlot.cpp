#include "cleaning/BatchSlot.h"

#include <algorithm>
#include <utility>

namespace vostrel {

std::shared_ptr<BatchControl> BatchSlot::begin(std::set<Uuid> ruleIDs, Start start, Date at,
                                               std::function<bool()> isAsked) {
    if (running) return nullptr;
    auto control = std::make_shared<BatchControl>(std::move(isAsked));
    running = Running{control, std::move(ruleIDs), start, at};
    return control;
}

std::vector<std::string> BatchSlot::end() {
    running.reset();
    return std::exchange(pendingAppQuits, {});
}

void BatchSlot::appQuitWhileRunning(const std::string& bundleID) {
    if (std::ranges::find(pendingAppQuits, bundleID) == pendingAppQuits.end()) pendingAppQuits.push_back(bundleID);
}

void BatchSlot::stop(const Uuid& ruleID) const {
    if (running && running->ruleIDs.contains(ruleID)) running->control->cancel(ruleID);
}

void BatchSlot::stopAll() const {
    if (running) running->control->cancel();
}

void BatchSlot::pauseChanged(bool isPaused) const {
    if (isPaused && running && running->start == Start::unattended) stopAll();
}

}  // namespace vostrel
