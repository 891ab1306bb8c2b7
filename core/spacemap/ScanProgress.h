#pragma once

#include <cstdint>
#include <string>

#include "base/ProgressBox.h"

namespace vostrel {

/// How far a scan is.
struct ScanProgress {
    std::int64_t files = 0;
    std::int64_t bytes = 0;
    std::int64_t folders = 0;
    std::int64_t unreadable = 0;
    std::int64_t notMeasured = 0;
    /// The folder being read.
    std::string current;

    friend bool operator==(const ScanProgress&, const ScanProgress&) = default;
};

/// A scan puts its progress in a few times a second; an interface looks whenever it likes.
using ScanProgressBox = ProgressBox<ScanProgress>;

}  // namespace vostrel
