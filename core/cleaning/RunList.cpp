#include "cleaning/RunList.h"

#include <algorithm>
#include <functional>
#include <ranges>

namespace vostrel {

bool RunList::add(std::vector<RunReport> records) {
    bool hasUnfinished = false;
    for (RunReport& record : records | std::views::reverse) {
        const auto [place, isNew] = places.emplace(record.id, runs.size());
        if (isNew) {
            hasUnfinished |= record.status == RunStatus::started;
            runs.push_back(std::move(record));
        } else if (record.status != RunStatus::started && runs[place->second].status == RunStatus::started) {
            runs[place->second] = std::move(record);
        }
    }
    return hasUnfinished;
}

std::vector<RunReport> RunList::newestFirst() const {
    auto sorted = runs;
    std::ranges::stable_sort(sorted, std::greater(), &RunReport::startedAt);
    return sorted;
}

}  // namespace vostrel
