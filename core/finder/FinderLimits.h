#pragma once

#include <cstddef>

namespace vostrel {

/// What bounds a search: how much it keeps, and how many seconds each stage may take.
struct FinderLimits {
    /// Large files listed, and as many old ones.
    std::size_t maxListed = 1'000;
    std::size_t oldCandidates = 4'000;
    /// Files kept to look for duplicates among.
    std::size_t poolFiles = 400'000;
    double walkSeconds = 480;
    double datesSeconds = 90;
    double compareSeconds = 900;
    /// Threads that read files.
    int hashWorkers = 2;
};

}  // namespace vostrel
