#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace vostrel {

/// A line through everything that a map could show, largest first and equal sizes by name: what lies below is folded.
struct SpaceCut {
    /// Stands after every name, those that are not UTF-8 included.
    static constexpr std::string_view lastName = "\U0010FFFF";

    std::int64_t bytes = 0;
    /// Normalised, as names are compared. Equal sizes whose names sort after it lie below.
    std::string name;

    /// Keeps every entry of so many bytes or more.
    [[nodiscard]] static SpaceCut atLeast(std::int64_t bytes) { return {bytes, std::string(lastName)}; }
    [[nodiscard]] static SpaceCut keepsNone() { return {std::numeric_limits<std::int64_t>::max(), {}}; }

    /// Whether an entry of this size and name, as its folder lists it, is folded.
    [[nodiscard]] bool folds(std::int64_t entryBytes, std::string_view entryName) const;

    friend bool operator==(const SpaceCut&, const SpaceCut&) = default;
};

/// The order of everything that a map shows: larger first, equal sizes by normalised name, equal names by their bytes.
[[nodiscard]] bool isShownBefore(std::int64_t bytes, std::string_view name, std::int64_t otherBytes,
                                 std::string_view otherName);

}  // namespace vostrel
