#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "probes/ProbeResults.h"

namespace vostrel {

/// What the texts of system tools say; nothing for a text of another form.

/// Of "vm.swapusage: total = 4096.00M  used = 2455.00M  free = 1641.00M  (encrypted)".
[[nodiscard]] std::optional<SwapUsage> parseSwapUsage(std::string_view text);

/// The names below the heading "Snapshots for disk /:" (or "… for volume group containing disk /:"): of each line its
/// first word, where that is a name with dots.
[[nodiscard]] std::optional<std::vector<std::string>> parseLocalSnapshots(std::string_view text);

/// The rows of the table with the columns PID, COMMAND and MEM, in any order; what stands before it is passed over, and
/// so is a row that cannot be read. Nothing when there is no table, or no row of it can be.
[[nodiscard]] std::optional<std::vector<MemoryRow>> parseTopMemory(std::string_view text);

}  // namespace vostrel
