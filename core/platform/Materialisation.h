#pragma once

#include <optional>

namespace vostrel {

/// Keeps the calling thread from downloading files whose content is only in the cloud, for as long as it lives.
///
/// The policy belongs to the thread: make and drop it on the thread that walks. The policy found before is put back,
/// if it could be read. Where nothing is ever dataless (Linux) it holds at once and does nothing.
class MaterialisationGuard {
public:
    MaterialisationGuard();
    MaterialisationGuard(const MaterialisationGuard&) = delete;
    MaterialisationGuard& operator=(const MaterialisationGuard&) = delete;
    ~MaterialisationGuard();  // NOLINT(performance-trivially-destructible): macOS has something to put back

    /// Whether the policy could be set. A walk without it must not run.
    [[nodiscard]] bool holds() const { return isSet; }

private:
    std::optional<int> previous;
    bool isSet = false;
};

}  // namespace vostrel
