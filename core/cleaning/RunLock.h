#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <utility>

#include "base/Uuid.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

/// Lets one clean run at a time, among all threads and programs: an advisory lock on a file. A process that dies
/// releases it. While it is held the file names the run, so that others can tell a run in hand from one that was
/// interrupted.
class RunLock {
public:
    /// Why a body did not run.
    struct Refusal {
        /// The error number when the file could not be opened or locked; 0 when another clean holds the lock.
        int unavailable = 0;

        [[nodiscard]] bool isHeld() const { return unavailable == 0; }
    };
    /// What the body gave, or why it did not run.
    template <class Value>
    using Result = std::expected<Value, Refusal>;

    explicit RunLock(std::filesystem::path file) : url(std::move(file)) {}

    /// Runs the body while the lock is held; does not wait for it. `run` is the run that the body is.
    template <class Body>
    [[nodiscard]] auto withLock(const Uuid& run, Body body) const -> Result<decltype(body())> {
        const auto held = take(run);
        if (!held) return std::unexpected(held.error());
        return body();
    }

    /// Whether some program carries out a run at this moment.
    [[nodiscard]] bool isHeld() const;
    /// Which one, where the file names it.
    [[nodiscard]] std::optional<Uuid> runInHand() const;

private:
    /// Gives the lock up when it is closed.
    [[nodiscard]] std::expected<OwnedDescriptor, Refusal> take(const Uuid& run) const;

    std::filesystem::path url;
};

}  // namespace vostrel
