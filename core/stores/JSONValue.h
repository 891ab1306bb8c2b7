#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vostrel {

class JSONValue;

/// Key and value.
using JSONMember = std::pair<std::string, JSONValue>;

struct JSONNull {
    friend bool operator==(JSONNull, JSONNull) = default;
};

/// A number whose text neither a 64-bit integer nor a double gives back, but a decimal of 38 digits and an exponent
/// of -128 to 127 holds.
struct JSONDecimal {
    std::string text;
    friend bool operator==(const JSONDecimal&, const JSONDecimal&) = default;
};

/// A number that not even such a decimal holds (1e400).
struct JSONUnrepresentableNumber {
    std::string text;
    friend bool operator==(const JSONUnrepresentableNumber&, const JSONUnrepresentableNumber&) = default;
};

using JSONArray = std::vector<JSONValue>;

/// The members of an object, sorted by key (by its bytes). A key that stands twice is kept twice, in the order found,
/// so that nothing is lost from an object that nobody can interpret.
class JSONObject {
public:
    JSONObject() = default;
    explicit JSONObject(std::vector<JSONMember> unsorted);
    JSONObject(std::initializer_list<JSONMember> unsorted);

    /// The value of that key (of its first member when the key is repeated), or null.
    [[nodiscard]] const JSONValue* find(std::string_view key) const;
    [[nodiscard]] const std::string* repeatedKey() const;
    [[nodiscard]] const std::vector<JSONMember>& members() const { return sorted; }

    friend bool operator==(const JSONObject& left, const JSONObject& right);

private:
    std::vector<JSONMember> sorted;
};

/// Any JSON value, without loss: every number keeps the text it was read with.
///
/// A number is held as integer or double only when writing that one gives the very same text again; so 1 is an
/// integer, 1.5 and -0 are doubles, and 1.0, 1E5 or 18446744073709551616 are decimals.
class JSONValue {
public:
    using Storage = std::variant<JSONNull, bool, std::int64_t, double, JSONDecimal, JSONUnrepresentableNumber,
                                 std::string, JSONArray, JSONObject>;

    JSONValue() = default;
    JSONValue(JSONNull) {}
    /// A boolean, or an integer; one beyond 64 bits with sign becomes a decimal.
    template <std::integral Integer>
    JSONValue(Integer value) : storage(storageOf(value)) {}
    JSONValue(double value) : storage(value) {}
    JSONValue(JSONDecimal value) : storage(std::move(value)) {}
    JSONValue(JSONUnrepresentableNumber value) : storage(std::move(value)) {}
    JSONValue(std::string value) : storage(std::move(value)) {}
    JSONValue(std::string_view value) : storage(std::string(value)) {}
    JSONValue(const char* value) : storage(std::string(value)) {}
    JSONValue(JSONArray value) : storage(std::move(value)) {}
    JSONValue(JSONObject value) : storage(std::move(value)) {}

    /// The number that a token of the JSON grammar stands for; nothing when the token is no JSON number.
    [[nodiscard]] static std::optional<JSONValue> number(std::string_view token);

    /// The content when it is of that kind, else null: `value.as<std::string>()`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const {
        return std::get_if<Kind>(&storage);
    }
    [[nodiscard]] bool isNull() const { return std::holds_alternative<JSONNull>(storage); }
    /// The number as it is written; nothing for a value that is no number, or not a finite one.
    [[nodiscard]] std::optional<std::string> numberText() const;
    /// "a string", "an object", … for messages.
    [[nodiscard]] std::string_view kindName() const;

    [[nodiscard]] const Storage& content() const { return storage; }

    friend bool operator==(const JSONValue& left, const JSONValue& right);

private:
    template <std::integral Integer>
    static Storage storageOf(Integer value) {
        if constexpr (std::same_as<Integer, bool>) {
            return value;
        } else {
            if (std::in_range<std::int64_t>(value)) return static_cast<std::int64_t>(value);
            return JSONDecimal{std::to_string(value)};
        }
    }

    Storage storage;
};

}  // namespace vostrel
