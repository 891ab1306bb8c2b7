#pragma once

#include <memory>
#include <mutex>
#include <set>

#include "platform/ChildProcess.h"

namespace vostrel {

/// The children that run now, for whoever must end them all. Any thread.
class LiveChildren {
public:
    /// Those of this process. Never destroyed, since a run may still be going on when the program ends.
    static LiveChildren& ofThisProcess();

    void add(const std::shared_ptr<ChildProcess>& child);
    void remove(const std::shared_ptr<ChildProcess>& child);
    void killAll();

private:
    std::mutex lock;
    std::set<std::shared_ptr<ChildProcess>> children;
};

}  // namespace vostrel
