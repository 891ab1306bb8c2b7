#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/Date.h"

namespace vostrel {

/// A property list, as macOS keeps settings and records in files: the kinds that Vostrel reads.
struct PropertyList {
    /// A number, a truth value, data: there is a value.
    struct Other {
        friend bool operator==(Other, Other) = default;
    };
    using Array = std::vector<PropertyList>;
    using Dictionary = std::vector<std::pair<std::string, PropertyList>>;

    std::variant<Other, std::string, Date, Array, Dictionary> content;

    /// Reads the binary or the XML form. Nothing when the bytes are neither, when text is no Unicode, or lists are
    /// nested deeper than any that a system writes.
    [[nodiscard]] static std::optional<PropertyList> parse(std::string_view bytes);

    /// The content when it is of that kind, else null: `list.as<std::string>()`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const {
        return std::get_if<Kind>(&content);
    }
    /// What a dictionary has under the key when that is of the kind, else null.
    template <class Kind>
    [[nodiscard]] const Kind* find(std::string_view key) const {
        const PropertyList* value = find(key);
        return value == nullptr ? nullptr : value->as<Kind>();
    }
    [[nodiscard]] const PropertyList* find(std::string_view key) const;
};

}  // namespace vostrel
