#include "probes/LiveChildren.h"

namespace vostrel {

LiveChildren& LiveChildren::ofThisProcess() {
    static auto& children = *new LiveChildren;
    return children;
}

void LiveChildren::add(const std::shared_ptr<ChildProcess>& child) {
    const std::scoped_lock held(lock);
    children.insert(child);
}

void LiveChildren::remove(const std::shared_ptr<ChildProcess>& child) {
    const std::scoped_lock held(lock);
    children.erase(child);
}

void LiveChildren::killAll() {
    const auto all = [this] {
        const std::scoped_lock held(lock);
        return children;
    }();
    for (const auto& child : all)
        child->kill();
}

}  // namespace vostrel
