#pragma once

namespace vostrel {

/// How far a run has come. A run whose last record says `started` is in hand, or was interrupted.
enum class RunStatus { started, finished, stopped, skipped };

}  // namespace vostrel
