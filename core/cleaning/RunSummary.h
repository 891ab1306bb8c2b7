#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "cleaning/RunReport.h"

namespace vostrel {

/// The text of the notification after runs that nobody watched.
struct RunSummary {
    std::string title;
    std::string body;

    /// Of the runs of one batch. `stillBelowFree` is the free space, in bytes, when it is still below the user's line
    /// afterwards; `topGrowth` a sentence about what grew most, told only then. Nothing when no rule was run and space
    /// is not short: a rule that had nothing to do is no news.
    [[nodiscard]] static std::optional<RunSummary> make(std::span<const RunReport> reports,
                                                        std::optional<std::int64_t> stillBelowFree,
                                                        const std::optional<std::string>& topGrowth);

    friend bool operator==(const RunSummary&, const RunSummary&) = default;
};

}  // namespace vostrel
