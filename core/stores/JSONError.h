#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// Why a JSON text or value could not be read or written, and where: the keys that lead to the fault, outermost first.
struct JSONError {
    std::string description;
    std::vector<std::string> path;

    /// The same fault seen from one level further out.
    [[nodiscard]] JSONError under(std::string_view key) &&;
    [[nodiscard]] JSONError under(std::size_t index) &&;

    /// "rules[3].filter.minAgeDays: The age must be 0 days or more."; the description alone for the whole text.
    [[nodiscard]] std::string text() const;

    friend bool operator==(const JSONError&, const JSONError&) = default;
};

/// What decoding returns.
template <class Value>
using Decoded = std::expected<Value, JSONError>;

/// A fault right here, as a `Decoded` of any type returns it.
[[nodiscard]] std::unexpected<JSONError> jsonFault(std::string description);

}  // namespace vostrel
