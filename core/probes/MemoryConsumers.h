#pragma once

#include <vector>

#include "probes/ProbeResults.h"

namespace vostrel {

/// The rows of each command name as one, the sums largest first, then by name.
[[nodiscard]] std::vector<MemoryConsumer> memoryConsumers(const std::vector<MemoryRow>& rows);

}  // namespace vostrel
