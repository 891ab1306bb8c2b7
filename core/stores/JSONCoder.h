#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "stores/JSONRecord.h"

namespace vostrel {

/// The coders of plain types and containers. What they read strictly is what they write: a list is no set of one, a
/// string no number; but a whole number may be written with a fraction or an exponent (1.0, 1E2).

template <>
struct JSONCoder<JSONValue> {
    static JSONValue encode(const JSONValue& value) { return value; }
    static Decoded<JSONValue> decode(const JSONValue& value) { return value; }
};

template <>
struct JSONCoder<bool> {
    static JSONValue encode(bool value) { return value; }
    static Decoded<bool> decode(const JSONValue& value);
};

template <>
struct JSONCoder<double> {
    static JSONValue encode(double value) { return value; }
    static Decoded<double> decode(const JSONValue& value);
};

template <>
struct JSONCoder<std::string> {
    static JSONValue encode(const std::string& value) { return value; }
    static Decoded<std::string> decode(const JSONValue& value);
};

/// A path is bytes, and JSON has only Unicode. A byte that is not UTF-8 is written as U+0000, which no path holds, and
/// its two hexadecimal digits, so that a record of an oddly named file can be kept and names that very file again.
template <>
struct JSONCoder<std::filesystem::path> {
    static JSONValue encode(const std::filesystem::path& value);
    static Decoded<std::filesystem::path> decode(const JSONValue& value);
};

template <>
struct JSONCoder<Date> {
    static JSONValue encode(Date value);
    static Decoded<Date> decode(const JSONValue& value);
};

template <>
struct JSONCoder<Uuid> {
    static JSONValue encode(const Uuid& value) { return value.text(); }
    static Decoded<Uuid> decode(const JSONValue& value);
};

namespace json {

/// The plain digits of a number that is whole.
[[nodiscard]] Decoded<std::string> wholeNumber(const JSONValue& value);
[[nodiscard]] std::unexpected<JSONError> outOfRange(std::string_view number);
[[nodiscard]] Decoded<const JSONArray*> arrayIn(const JSONValue& value);

enum class Unreadable { failsAll, isDropped };

/// Decodes the elements of a list one by one into `take`.
template <class Element, class Take>
std::expected<void, JSONError> decodeElements(const JSONValue& value, Unreadable unreadable, Take take) {
    const auto array = arrayIn(value);
    if (!array) return std::unexpected(array.error());
    for (std::size_t index = 0; index < (*array)->size(); ++index) {
        auto element = decodeJSON<Element>((**array)[index]);
        if (element) {
            take(std::move(*element));
        } else if (unreadable == Unreadable::failsAll) {
            return std::unexpected(std::move(element).error().under(index));
        }
    }
    return {};
}

template <class Container>
JSONValue encodeElements(const Container& container) {
    JSONArray array;
    array.reserve(container.size());
    for (const auto& element : container)
        array.push_back(encodeJSON<typename Container::value_type>(element));
    return array;
}

}  // namespace json

template <std::integral Integer>
struct JSONCoder<Integer> {
    static JSONValue encode(Integer value) { return value; }

    static Decoded<Integer> decode(const JSONValue& value) {
        const auto digits = json::wholeNumber(value);
        if (!digits) return std::unexpected(digits.error());
        Integer number{};
        const char* end = digits->data() + digits->size();
        const auto parsed = std::from_chars(digits->data(), end, number);
        if (parsed.ec != std::errc() || parsed.ptr != end) return json::outOfRange(*digits);
        return number;
    }
};

template <class Value>
struct JSONCoder<std::optional<Value>> {
    static JSONValue encode(const std::optional<Value>& value) { return value ? encodeJSON(*value) : JSONValue(); }

    static Decoded<std::optional<Value>> decode(const JSONValue& value) {
        if (value.isNull()) return std::nullopt;
        return decodeJSON<Value>(value);
    }
    static Decoded<std::optional<Value>> decodeReadable(const JSONValue& value) {
        return JSONCoder<Value>::decodeReadable(value);
    }
};

template <class Element>
struct JSONCoder<std::vector<Element>> {
    static JSONValue encode(const std::vector<Element>& list) { return json::encodeElements(list); }
    static Decoded<std::vector<Element>> decode(const JSONValue& value) {
        return decode(value, json::Unreadable::failsAll);
    }
    static Decoded<std::vector<Element>> decodeReadable(const JSONValue& value) {
        return decode(value, json::Unreadable::isDropped);
    }

private:
    static Decoded<std::vector<Element>> decode(const JSONValue& value, json::Unreadable unreadable) {
        std::vector<Element> list;
        const auto take = [&](Element&& element) { list.push_back(std::move(element)); };
        if (auto taken = json::decodeElements<Element>(value, unreadable, take); !taken)
            return std::unexpected(std::move(taken).error());
        return list;
    }
};

/// Written in the set's order; an element that stands twice is read once.
template <class Element>
struct JSONCoder<std::set<Element>> {
    static JSONValue encode(const std::set<Element>& set) { return json::encodeElements(set); }
    static Decoded<std::set<Element>> decode(const JSONValue& value) {
        return decode(value, json::Unreadable::failsAll);
    }
    static Decoded<std::set<Element>> decodeReadable(const JSONValue& value) {
        return decode(value, json::Unreadable::isDropped);
    }

private:
    static Decoded<std::set<Element>> decode(const JSONValue& value, json::Unreadable unreadable) {
        std::set<Element> set;
        const auto take = [&](Element&& element) { set.insert(std::move(element)); };
        if (auto taken = json::decodeElements<Element>(value, unreadable, take); !taken)
            return std::unexpected(std::move(taken).error());
        return set;
    }
};

template <class Value>
struct JSONCoder<std::map<std::string, Value>> {
    using Map = std::map<std::string, Value>;

    static JSONValue encode(const Map& map) {
        std::vector<JSONMember> members;
        for (const auto& [key, value] : map)
            members.emplace_back(key, encodeJSON(value));
        return JSONObject(std::move(members));
    }
    static Decoded<Map> decode(const JSONValue& value) { return decode(value, json::Unreadable::failsAll); }
    static Decoded<Map> decodeReadable(const JSONValue& value) { return decode(value, json::Unreadable::isDropped); }

private:
    static Decoded<Map> decode(const JSONValue& value, json::Unreadable unreadable) {
        const auto object = json::objectIn(value);
        if (!object) return std::unexpected(object.error());
        Map map;
        for (const auto& [key, member] : (*object)->members()) {
            auto decoded = decodeJSON<Value>(member);
            if (decoded) {
                map.emplace(key, std::move(*decoded));
            } else if (unreadable == json::Unreadable::failsAll) {
                return std::unexpected(std::move(decoded).error().under(std::string_view(key)));
            }
        }
        return map;
    }
};

}  // namespace vostrel
