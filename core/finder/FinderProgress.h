#pragma once

#include <cstdint>
#include <string>

#include "base/ProgressBox.h"

namespace vostrel {

/// How far a search is.
struct FinderProgress {
    enum class Stage { walking, dates, firstBlocks, wholeFiles };

    Stage stage = Stage::walking;
    // Of the walk.
    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::int64_t unreadable = 0;
    std::int64_t notMeasured = 0;
    /// The folder being read.
    std::string current;
    // Of the later stages: files looked at, and bytes read.
    std::int64_t done = 0;
    std::int64_t total = 0;
    std::int64_t bytesDone = 0;
    std::int64_t bytesTotal = 0;

    friend bool operator==(const FinderProgress&, const FinderProgress&) = default;
};

/// A search puts its progress in a few times a second; an interface looks whenever it likes.
using FinderProgressBox = ProgressBox<FinderProgress>;

}  // namespace vostrel
