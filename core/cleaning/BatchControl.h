#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "base/Uuid.h"
#include "cleaning/RunControl.h"

namespace vostrel {

/// Cancels a batch of runs as a whole, or rule by rule, from any thread while it runs.
class BatchControl {
public:
    BatchControl() = default;
    /// One that is also cancelled as soon as the host says so; `isAsked` is polled from any thread.
    explicit BatchControl(std::function<bool()> isAsked) : batch(std::make_shared<RunControl>(std::move(isAsked))) {}

    /// The rule's own control, below the batch's.
    [[nodiscard]] std::shared_ptr<const RunControl> control(const Uuid& ruleID) { return controlOf(ruleID); }

    void cancel() { batch->cancel(); }
    /// Also before the rule's turn has come.
    void cancel(const Uuid& ruleID) { controlOf(ruleID)->cancel(); }
    /// Whether the batch as a whole is.
    [[nodiscard]] bool isCancelled() const { return batch->isCancelled(); }

private:
    [[nodiscard]] std::shared_ptr<RunControl> controlOf(const Uuid& ruleID) {
        const std::lock_guard guard(lock);
        auto& control = perRule[ruleID];
        if (!control) control = std::make_shared<RunControl>(batch);
        return control;
    }

    const std::shared_ptr<RunControl> batch = std::make_shared<RunControl>();
    std::mutex lock;
    std::map<Uuid, std::shared_ptr<RunControl>> perRule;
};

}  // namespace vostrel
