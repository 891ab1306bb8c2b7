#pragma once

#include <cstdint>

#include "base/Calendar.h"
#include "base/Date.h"

namespace vostrel {

/// What a search looks for. Sizes are bytes; a file of just that size is found.
struct FinderCriteria {
    static constexpr int defaultOldMonths = 12;

    /// Large: so many allocated.
    std::int64_t largeBytes = 500'000'000;
    /// Old: not used for so many months, and so many bytes allocated.
    int oldMonths = defaultOldMonths;
    std::int64_t oldMinBytes = 10'000'000;
    /// Duplicates: of such a length.
    std::int64_t duplicateMinBytes = 1'000'000;

    /// So many calendar months before `now`, at the same time of the day; the last day of a month that is shorter.
    [[nodiscard]] Date oldCutoff(Date now, const Calendar& calendar) const;

    friend bool operator==(const FinderCriteria&, const FinderCriteria&) = default;
};

}  // namespace vostrel
