#include "spacemap/LargestEntries.h"

#include <algorithm>

#include "base/UnicodeText.h"

namespace vostrel {

void LargestEntries::offer(std::string_view name, std::int64_t bytes, std::uint64_t number) {
    if (wanted == 0) return;
    if (isFull && cut.folds(bytes, name)) {
        leftOut = std::max(leftOut, bytes);
        return;
    }
    entries.push_back({names.size(), name.size(), bytes, number});
    names += name;
    if (entries.size() >= 2 * wanted) reduce();
}

const std::vector<LargestEntries::Entry>& LargestEntries::settle(std::int64_t floor) {
    reduce();
    std::erase_if(entries, [&](const Entry& entry) { return entry.bytes <= floor; });
    return entries;
}

void LargestEntries::clear() {
    entries.clear();
    names.clear();
    isFull = false;
    leftOut = 0;
}

bool LargestEntries::isFirst(const Entry& left, const Entry& right) const {
    return isShownBefore(left.bytes, nameOf(left), right.bytes, nameOf(right));
}

void LargestEntries::reduce() {
    if (entries.size() <= wanted) return;
    const auto last = entries.begin() + static_cast<std::ptrdiff_t>(wanted) - 1;
    std::nth_element(entries.begin(), last, entries.end(),
                     [&](const Entry& left, const Entry& right) { return isFirst(left, right); });
    for (auto entry = last + 1; entry != entries.end(); ++entry)
        leftOut = std::max(leftOut, entry->bytes);
    entries.erase(last + 1, entries.end());
    isFull = true;
    cut.bytes = last->bytes;
    cut.name.clear();
    appendFolded(cut.name, nameOf(*last));

    spareNames.clear();
    for (Entry& entry : entries) {
        const auto name = nameOf(entry);
        entry.nameStart = spareNames.size();
        spareNames += name;
    }
    std::swap(names, spareNames);
}

}  // namespace vostrel
