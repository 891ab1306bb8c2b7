#include "cleaning/CleanupExecutor.h"

#include <utility>

#include "base/SystemError.h"
#include "cleaning/DeleteStopCheck.h"
#include "cleaning/ItemRecheck.h"
#include "cleaning/ItemSentences.h"
#include "cleaning/RemovalOutcome.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/VolumeFacts.h"

namespace vostrel {

namespace {

using Status = ItemOutcome::Status;

FileIdentity identityOf(const PlannedItem& item) {
    return {item.device, item.fileID};
}

ItemOutcome outcomeFor(const PlannedItem& item, Status status) {
    ItemOutcome outcome;
    outcome.path = item.url;
    outcome.bytes = item.bytes;
    outcome.status = status;
    return outcome;
}

/// One run of an executor.
class Execution {
public:
    Execution(const CleanupExecutor& with, const CleanupPlan& ofRun, const CleanupExecutor::Order& told,
              const RunControl& ofControl)
        : executor(with),
          plan(ofRun),
          order(told),
          control(ofControl),
          stopCheck(control, {order.liveCheck, order.pauseWhileRunning, executor.runningApps, executor.appCheckInterval,
                              executor.clock}),
          recheck(executor, plan, order, [this] { return control.isCancelled(); }) {}

    CleanupExecutor::Result run() {
        CleanupExecutor::Result result;
        for (const PlannedItem& item : plan.items) {
            auto outcome = result.stop ? std::nullopt : handle(item);
            if (!outcome) {
                if (!result.stop) result.stop = stopCheck.reason();
                outcome = outcomeFor(item, Status::notAttempted);
            }
            result.outcomes.push_back(*std::move(outcome));
        }
        if (!result.stop && wasStoppedInAnItem) result.stop = stopCheck.reason();
        return result;
    }

private:
    /// Nothing when the run must stop before the item.
    [[nodiscard]] std::optional<ItemOutcome> handle(const PlannedItem& item) {
        if (stopCheck.reason()) return std::nullopt;
        if (order.progress) order.progress(item);
        auto verdict = recheck.problem(item);
        // Cancelled while it was measured: what was not read says nothing about the item.
        if (control.isCancelled()) return std::nullopt;
        ItemOutcome outcome;
        if (verdict) {
            outcome = outcomeFor(item, verdict->status);
            outcome.message = std::move(verdict->message);
            return outcome;
        }
        outcome = order.action == CleanupAction::trash ? trash(item) : remove(item);
        const bool isGone = outcome.status == Status::trashed || outcome.status == Status::deleted ||
                            outcome.status == Status::partlyDeleted || outcome.trashPath;
        if (isGone) recheck.removed(item);
        return outcome;
    }

    [[nodiscard]] ItemOutcome trash(const PlannedItem& item) {
        ItemOutcome outcome = outcomeFor(item, Status::failed);
        auto moved = executor.fileOps.trash(item.url, identityOf(item), item.parent);
        if (!moved) {
            outcome.message = std::move(moved.error());
            return outcome;
        }
        outcome.trashPath = *std::move(moved);
        outcome.message = whyNotConfirmed(item, outcome.trashPath);
        if (!outcome.message) outcome.status = Status::trashed;
        return outcome;
    }

    [[nodiscard]] static std::optional<std::string> whyNotConfirmed(const PlannedItem& item,
                                                                    const std::optional<std::filesystem::path>& place) {
        if (!place) return sentences::item::trashNotConfirmed("macOS did not say where it went");
        const auto there = statusOfPath(*place);
        if (!there) return sentences::item::trashNotConfirmed("nothing is at " + place->native());
        const bool isTheSame = FileIdentity{there->device, there->inode} == identityOf(item);
        if (!isTheSame) return sentences::item::trashNotConfirmed(place->native() + " is a different item");
        return std::nullopt;
    }

    [[nodiscard]] ItemOutcome remove(const PlannedItem& item) {
        const RemovalLimits limits{identityOf(item), item.parent, plan.createdAt,
                                   [this] { return stopCheck.reason().has_value(); }};
        const Removal removal = executor.fileOps.remove(item.url, limits);
        wasStoppedInAnItem = wasStoppedInAnItem || removal.stopped;
        auto outcome = outcomeOf(removal, item.url, stopCheck.reason());
        if (!removal.removedAnything()) outcome.bytes = item.bytes;
        const bool hasInfo = plan.roots[item.rootIndex].datedByTrashInfo;
        if (outcome.status == Status::deleted && hasInfo) executor.fileOps.forgetTrashed(item.url);
        return outcome;
    }

    const CleanupExecutor& executor;
    const CleanupPlan& plan;
    const CleanupExecutor::Order& order;
    const RunControl& control;
    DeleteStopCheck stopCheck;
    ItemRecheck recheck;
    bool wasStoppedInAnItem = false;
};

}  // namespace

std::optional<VolumeIdentity> volumeIdentityOf(const std::filesystem::path& path) {
    const auto status = statusOfPath(path);
    if (!status) return std::nullopt;
    return VolumeIdentity{status->device, status->mount};
}

std::optional<std::string> volumeUUIDOf(const std::filesystem::path& folder) {
    const OwnedDescriptor open(openFolder(folder));
    return open.isOpen() ? volumeUUID(open.get()) : std::nullopt;
}

CleanupExecutor::Result CleanupExecutor::execute(const CleanupPlan& plan, const Order& order,
                                                 const RunControl& control) const {
    return Execution(*this, plan, order, control).run();
}

}  // namespace vostrel
