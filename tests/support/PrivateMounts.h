#pragma once

#include <functional>

namespace vostrel {

/// Runs a test's steps on a thread with mounts of its own, so that it may mount and cover folders without anyone else
/// seeing it. False, and nothing run, where the system does not allow that.
[[nodiscard]] bool withPrivateMounts(const std::function<void()>& steps);

}  // namespace vostrel
