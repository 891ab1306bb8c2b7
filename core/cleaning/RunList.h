#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "base/Uuid.h"
#include "cleaning/RunReport.h"

namespace vostrel {

/// Runs put together from their records: each run once, its end record in place of its started one.
class RunList {
public:
    /// Takes the records of one day file in the file's order. Whether a run among them has no end record so far.
    bool add(std::vector<RunReport> records);

    [[nodiscard]] std::size_t size() const { return runs.size(); }
    /// By when they started; of runs that started at one moment, the one recorded last comes first.
    [[nodiscard]] std::vector<RunReport> newestFirst() const;

private:
    std::vector<RunReport> runs;
    std::map<Uuid, std::size_t> places;
};

}  // namespace vostrel
