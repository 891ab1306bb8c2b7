#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>

#include "base/Uuid.h"

namespace vostrel {

struct RunReport;

/// What runs removed, summed up, and what they could not remove. Reports of rules that were not run count nothing.
struct RemovedAmounts {
    std::int64_t deletedBytes = 0;
    std::int64_t movedToTrashBytes = 0;
    /// By how much free space grew over the runs that deleted something; absent when one of them did not measure it.
    std::optional<std::int64_t> freedBytes = 0;
    std::int64_t itemsCleaned = 0;
    std::int64_t itemsPartlyDeleted = 0;
    std::int64_t itemsFailed = 0;
    /// The rules that removed something.
    std::set<Uuid> rules;

    [[nodiscard]] static RemovedAmounts of(std::span<const RunReport> reports);

    [[nodiscard]] bool removedAnything() const { return itemsCleaned > 0 || itemsPartlyDeleted > 0; }
    /// Something was deleted, and yet the measured free space has not grown.
    [[nodiscard]] bool freedNothingYet() const { return deletedBytes > 0 && freedBytes && *freedBytes <= 0; }
};

/// "1.5 GB", and "less than 1 MB" for everything below that.
[[nodiscard]] std::string amountText(std::int64_t bytes);

/// "1 item", "3 items".
[[nodiscard]] std::string itemsText(std::int64_t count);

/// "Freed 1.2 GB, moved 30 MB to the Trash"; by the number of items when they held nothing; nothing when no item was
/// removed whole and no byte. "Freed" is said where the measured free space grew, of no more than was deleted and no
/// more than it grew by; else "Deleted".
[[nodiscard]] std::optional<std::string> removedText(const RemovedAmounts& amounts);

}  // namespace vostrel
