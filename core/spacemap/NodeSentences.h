#pragma once

#include <string>
#include <vector>

#include "spacemap/SpaceNode.h"

namespace vostrel {

/// What is missing from a node's totals and why, a sentence for each reason; none when nothing is.
[[nodiscard]] std::vector<std::string> unmeasuredSentences(const SpaceNode& node);

}  // namespace vostrel
