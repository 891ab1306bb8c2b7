#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "stores/JSONError.h"
#include "stores/JSONValue.h"

namespace vostrel {

/// How values become JSON and back. Each type says it once, for both directions:
///
/// - a record lists its fields:
///   `template <> struct JSONFields<PinnedFile> {
///        static constexpr std::array list{jsonField<&PinnedFile::name>("name"), …}; };`
///   and may add `static std::optional<std::string> settle(PinnedFile&)`, called on what was read: it puts the record
///   into its kept form, or returns the sentence that refuses it;
/// - an enumeration lists its names, and may name the value that an unknown word becomes:
///   `template <> struct JSONNames<AgeBasis> {
///        static constexpr std::array list{JSONName{AgeBasis::modified, "modified"}, …};
///        static constexpr AgeBasis unknown = AgeBasis::modified; };`
/// - a `std::variant` of records lists what stands under "type" for each alternative, in their order:
///   `template <> struct JSONCases<RuleTarget> {
///        static constexpr auto names = std::to_array<std::string_view>({"folder", …}); };`
/// - anything else specialises `JSONCoder` itself: `static JSONValue encode(const T&)` and
///   `static Decoded<T> decode(const JSONValue&)`.
///
/// Coders of the plain types are in "stores/JSONCoder.h". Keys that a record does not list are ignored, unless its
/// `JSONFields`, or the `JSONCases` of its variant, say `static constexpr bool refusesOtherKeys = true;`: then they
/// make it unreadable, as a key does that is there twice. These lists belong in a file of their own, included where
/// records are stored.
template <class Value>
struct JSONCoder;

template <class Record>
struct JSONFields;

template <class Enumeration>
struct JSONNames;

template <class Variant>
struct JSONCases;

template <class Value>
[[nodiscard]] JSONValue encodeJSON(const Value& value) {
    return JSONCoder<Value>::encode(value);
}

template <class Value>
[[nodiscard]] Decoded<Value> decodeJSON(const JSONValue& value) {
    return JSONCoder<Value>::decode(value);
}

/// What reading does about a key that is absent or cannot be read. Null counts as absent, except where it is required.
enum class JSONReading {
    required,      ///< absent: unreadable
    optional,      ///< absent: empty (what every `std::optional` member is read with unless told otherwise)
    defaulted,     ///< absent: the member's default
    lenient,       ///< absent or unreadable: the member's default
    eachReadable,  ///< a list, set or map whose unreadable elements are dropped alone; otherwise as `lenient`
};

/// One field of a record, its type put aside so that the walk through the fields is compiled once for all records.
struct JSONField {
    std::string_view key;
    JSONReading reading;
    /// Nothing when the member is an empty optional: the key is left out.
    std::optional<JSONValue> (*encode)(const void* record);
    std::expected<void, JSONError> (*decode)(const JSONValue& value, void* record);
};

template <class Enumeration>
struct JSONName {
    Enumeration value;
    std::string_view name;
};
template <class Enumeration>
JSONName(Enumeration, const char*) -> JSONName<Enumeration>;

namespace json {

template <class>
struct MemberOf;
template <class Record, class Member>
struct MemberOf<Member Record::*> {
    using RecordType = Record;
    using MemberType = Member;
};

template <class>
inline constexpr bool isOptional = false;
template <class Value>
inline constexpr bool isOptional<std::optional<Value>> = true;

template <auto member>
std::optional<JSONValue> encodeMember(const void* record) {
    using Types = MemberOf<decltype(member)>;
    const auto& value = static_cast<const typename Types::RecordType*>(record)->*member;
    if constexpr (isOptional<typename Types::MemberType>) {
        if (!value) return std::nullopt;
    }
    return encodeJSON(value);
}

template <auto member, JSONReading reading>
std::expected<void, JSONError> decodeMember(const JSONValue& value, void* record) {
    using Types = MemberOf<decltype(member)>;
    using Member = typename Types::MemberType;
    auto decoded = [&] {
        if constexpr (reading == JSONReading::eachReadable) {
            return JSONCoder<Member>::decodeReadable(value);
        } else {
            return JSONCoder<Member>::decode(value);
        }
    }();
    if (!decoded) return std::unexpected(std::move(decoded).error());
    static_cast<typename Types::RecordType*>(record)->*member = std::move(*decoded);
    return {};
}

[[nodiscard]] JSONObject encodeFields(const void* record, std::span<const JSONField> fields,
                                      std::optional<std::string_view> type);
[[nodiscard]] std::expected<void, JSONError> decodeFields(const JSONValue& value, void* record,
                                                          std::span<const JSONField> fields);
/// The object that the value is; one with a repeated key is refused.
[[nodiscard]] Decoded<const JSONObject*> objectIn(const JSONValue& value);
/// Refuses a key that is neither `type` nor one of the fields'.
[[nodiscard]] std::expected<void, JSONError> refuseOtherKeys(const JSONValue& value, std::span<const JSONField> fields,
                                                             std::optional<std::string_view> type);
template <class Description>
inline constexpr bool refusesOtherKeys = false;
template <class Description>
    requires requires { Description::refusesOtherKeys; }
inline constexpr bool refusesOtherKeys<Description> = Description::refusesOtherKeys;

/// The word under "type".
[[nodiscard]] Decoded<std::string> decodeType(const JSONValue& value);
[[nodiscard]] std::unexpected<JSONError> unknownWord(std::string_view word);
[[nodiscard]] std::unexpected<JSONError> expected(std::string_view kind, const JSONValue& found);

}  // namespace json

/// A field of a record: `jsonField<&Rule::filter, JSONReading::defaulted>("filter")`.
template <auto member, JSONReading reading = JSONReading::required>
constexpr JSONField jsonField(std::string_view key) {
    constexpr bool mayBeEmpty = json::isOptional<typename json::MemberOf<decltype(member)>::MemberType>;
    constexpr bool readsOptional = mayBeEmpty && reading == JSONReading::required;
    return {key, readsOptional ? JSONReading::optional : reading, &json::encodeMember<member>,
            &json::decodeMember<member, reading>};
}

template <class Record>
    requires requires { JSONFields<Record>::list; }
struct JSONCoder<Record> {
    static JSONValue encode(const Record& record) {
        return json::encodeFields(&record, JSONFields<Record>::list, std::nullopt);
    }

    static Decoded<Record> decode(const JSONValue& value) {
        Record record;
        if (auto read = json::decodeFields(value, &record, JSONFields<Record>::list); !read)
            return std::unexpected(std::move(read).error());
        if constexpr (json::refusesOtherKeys<JSONFields<Record>>) {
            if (auto known = json::refuseOtherKeys(value, JSONFields<Record>::list, std::nullopt); !known)
                return std::unexpected(std::move(known).error());
        }
        if constexpr (requires { JSONFields<Record>::settle(record); }) {
            if (auto refusal = JSONFields<Record>::settle(record)) return jsonFault(std::move(*refusal));
        }
        return record;
    }
};

template <class Enumeration>
    requires requires { JSONNames<Enumeration>::list; }
struct JSONCoder<Enumeration> {
    static JSONValue encode(Enumeration value) { return name(value); }

    static Decoded<Enumeration> decode(const JSONValue& value) {
        const auto* word = value.as<std::string>();
        if (!word) return json::expected("a string", value);
        for (const auto& entry : JSONNames<Enumeration>::list) {
            if (entry.name == *word) return entry.value;
        }
        if constexpr (requires { JSONNames<Enumeration>::unknown; }) {
            return JSONNames<Enumeration>::unknown;
        } else {
            return json::unknownWord(*word);
        }
    }

    static std::string_view name(Enumeration value) {
        for (const auto& entry : JSONNames<Enumeration>::list) {
            if (entry.value == value) return entry.name;
        }
        return {};
    }
};

/// An alternative without members needs no field list.
template <class... Records>
    requires requires { JSONCases<std::variant<Records...>>::names; }
struct JSONCoder<std::variant<Records...>> {
    using Variant = std::variant<Records...>;
    static constexpr std::span<const std::string_view> names = JSONCases<Variant>::names;
    static_assert(names.size() == sizeof...(Records));

    static JSONValue encode(const Variant& value) {
        return std::visit(
            [&](const auto& record) {
                using Record = std::remove_cvref_t<decltype(record)>;
                return json::encodeFields(&record, fieldsOf<Record>(), names[value.index()]);
            },
            value);
    }

    static Decoded<Variant> decode(const JSONValue& value) {
        const auto type = json::decodeType(value);
        if (!type) return std::unexpected(type.error());
        constexpr std::array decoders{&decodeAs<Records>...};
        for (std::size_t index = 0; index < names.size(); ++index) {
            if (names[index] == *type) return decoders[index](value);
        }
        return json::unknownWord(*type);
    }

private:
    template <class Record>
    static constexpr std::span<const JSONField> fieldsOf() {
        if constexpr (requires { JSONFields<Record>::list; }) {
            return JSONFields<Record>::list;
        } else {
            static_assert(std::is_empty_v<Record>, "a record with members needs a list of its fields");
            return {};
        }
    }

    template <class Record>
    static Decoded<Variant> decodeAs(const JSONValue& value) {
        if constexpr (json::refusesOtherKeys<JSONCases<Variant>>) {
            if (auto known = json::refuseOtherKeys(value, fieldsOf<Record>(), "type"); !known)
                return std::unexpected(std::move(known).error());
        }
        if constexpr (requires { JSONFields<Record>::list; }) {
            return JSONCoder<Record>::decode(value);
        } else {
            return Record{};
        }
    }
};

}  // namespace vostrel
