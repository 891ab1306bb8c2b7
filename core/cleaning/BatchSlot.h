#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "cleaning/BatchControl.h"

namespace vostrel {

/// Holds the one batch that may run at a time, and the applications that quit meanwhile. A value that one thread owns;
/// the batch's control may be used from any.
struct BatchSlot {
    /// Whether the user asked for the batch, and alone stops it.
    enum class Start { byTheUser, unattended };

    struct Running {
        std::shared_ptr<BatchControl> control;
        std::set<Uuid> ruleIDs;
        Start start = Start::byTheUser;
        Date startedAt;
    };
    std::optional<Running> running;
    /// Bundle identifiers, each once, in the order in which the applications quit.
    std::vector<std::string> pendingAppQuits;

    /// The control of a batch that may begin now; nothing while another one runs. The control is cancelled as well as
    /// soon as `isAsked` says so, which may be empty and is polled from any thread.
    [[nodiscard]] std::shared_ptr<BatchControl> begin(std::set<Uuid> ruleIDs, Start start, Date at,
                                                      std::function<bool()> isAsked = {});
    /// The batch has ended. Gives the applications that quit meanwhile, whose rules are the next batch.
    [[nodiscard]] std::vector<std::string> end();
    void appQuitWhileRunning(const std::string& bundleID);

    /// Cancels one rule of the batch, or all of it.
    void stop(const Uuid& ruleID) const;
    void stopAll() const;
    /// Automatic cleaning was paused or goes on: a pause cancels a batch that nobody asked for.
    void pauseChanged(bool isPaused) const;
};

}  // namespace vostrel
