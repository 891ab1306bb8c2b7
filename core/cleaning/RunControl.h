#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace vostrel {

/// Cancels a run from any thread. A batch's control is the parent of those of its runs: cancelling it cancels them all.
class RunControl {
public:
    explicit RunControl(std::shared_ptr<const RunControl> around = nullptr) : parent(std::move(around)) {}
    /// One that is also cancelled as soon as the host says so; `isAsked` is polled from any thread.
    explicit RunControl(std::function<bool()> isAsked) : host(std::move(isAsked)) {}

    void cancel() { cancelled.store(true); }
    [[nodiscard]] bool isCancelled() const {
        return cancelled.load() || (host && host()) || (parent && parent->isCancelled());
    }

private:
    std::atomic<bool> cancelled = false;
    std::function<bool()> host;
    std::shared_ptr<const RunControl> parent;
};

}  // namespace vostrel
