#pragma once

#include <filesystem>
#include <optional>

#include "cleaning/ItemOutcome.h"
#include "cleaning/Removal.h"
#include "cleaning/StopReason.h"

namespace vostrel {

/// What a deletion comes to for the user. `stop` is why it was told to stop, if it was.
[[nodiscard]] ItemOutcome outcomeOf(const Removal& removal, const std::filesystem::path& item,
                                    const std::optional<StopReason>& stop);

}  // namespace vostrel
