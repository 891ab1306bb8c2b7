#pragma once

namespace vostrel {

/// How items are removed: into the Trash, where they can be put back, or for good.
enum class CleanupAction { trash, deletePermanently };

}  // namespace vostrel
