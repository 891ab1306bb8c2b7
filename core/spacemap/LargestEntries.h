#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spacemap/SpaceCut.h"

namespace vostrel {

/// The largest entries of one folder, equal sizes by name, gathered as the folder lists them.
///
/// It holds no more than about twice as many as are wanted, however many are offered, and allocates nothing for an
/// entry that is too small. What it ends with does not depend on the order of the offers.
class LargestEntries {
public:
    struct Entry {
        std::size_t nameStart = 0;
        std::size_t nameLength = 0;
        std::int64_t bytes = 0;
        /// Whatever the caller wants to know it by.
        std::uint64_t number = 0;
    };

    /// How many are wanted. Set before the first offer.
    void wants(std::size_t count) { wanted = count; }
    void offer(std::string_view name, std::int64_t bytes, std::uint64_t number);

    /// Those of more than `floor` bytes, in any order. Nothing is offered from then on.
    [[nodiscard]] const std::vector<Entry>& settle(std::int64_t floor);
    [[nodiscard]] std::string_view nameOf(const Entry& entry) const {
        return std::string_view(names).substr(entry.nameStart, entry.nameLength);
    }
    /// The size of the largest that gave way to others by number; 0 for none.
    [[nodiscard]] std::int64_t largestLeftOut() const { return leftOut; }

    /// How many are held: more than are wanted before they are settled.
    [[nodiscard]] std::size_t count() const { return entries.size(); }

    /// Forgets everything and keeps its memory.
    void clear();
    [[nodiscard]] std::size_t footprint() const {
        return names.capacity() + spareNames.capacity() + entries.capacity() * sizeof(Entry);
    }

private:
    [[nodiscard]] bool isFirst(const Entry& left, const Entry& right) const;
    void reduce();

    std::size_t wanted = 0;
    std::vector<Entry> entries;
    std::string names;
    std::string spareNames;
    bool isFull = false;
    SpaceCut cut;  // once full: what lies below it is not among the largest
    std::int64_t leftOut = 0;
};

}  // namespace vostrel
