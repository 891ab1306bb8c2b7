#include "stores/JSONValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "stores/JSONNumber.h"

namespace vostrel {

namespace {

/// The longest text that a double is written with: sign, 17 digits, point, "e-308".
constexpr std::size_t longestDouble = 24;

std::optional<std::int64_t> sameInteger(std::string_view token) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    const bool whole = error == std::errc() && end == token.data() + token.size();
    return whole && std::to_string(value) == token ? std::optional(value) : std::nullopt;
}

std::optional<double> sameDouble(std::string_view token) {
    if (token.size() > longestDouble) return std::nullopt;
    const auto value = nearestDouble(token);
    return value && canonicalNumber(*value) == token ? value : std::nullopt;
}

}  // namespace

JSONObject::JSONObject(std::vector<JSONMember> unsorted) {
    if (std::ranges::is_sorted(unsorted, {}, &JSONMember::first)) {
        sorted = std::move(unsorted);
        return;
    }
    // Equal keys stay in the order of their places. (std::stable_sort leans on what newer compilers call deprecated.)
    std::vector<JSONMember*> order;
    order.reserve(unsorted.size());
    for (auto& member : unsorted)
        order.push_back(&member);
    std::ranges::sort(order, [](const JSONMember* left, const JSONMember* right) {
        const auto keys = left->first <=> right->first;
        return keys == 0 ? left < right : keys < 0;
    });
    sorted.reserve(order.size());
    for (auto* member : order)
        sorted.push_back(std::move(*member));
}

JSONObject::JSONObject(std::initializer_list<JSONMember> unsorted) : JSONObject(std::vector<JSONMember>(unsorted)) {}

const JSONValue* JSONObject::find(std::string_view key) const {
    const auto found = std::ranges::lower_bound(sorted, key, {}, &JSONMember::first);
    return found != sorted.end() && found->first == key ? &found->second : nullptr;
}

const std::string* JSONObject::repeatedKey() const {
    const auto found = std::ranges::adjacent_find(sorted, {}, &JSONMember::first);
    return found != sorted.end() ? &found->first : nullptr;
}

bool operator==(const JSONObject& left, const JSONObject& right) {
    return left.sorted == right.sorted;
}

std::optional<JSONValue> JSONValue::number(std::string_view token) {
    if (!isNumberToken(token)) return std::nullopt;
    if (const auto integer = sameInteger(token)) return JSONValue(*integer);
    if (const auto value = sameDouble(token)) return JSONValue(*value);
    if (fitsDecimal(token)) return JSONValue(JSONDecimal{std::string(token)});
    return JSONValue(JSONUnrepresentableNumber{std::string(token)});
}

std::optional<std::string> JSONValue::numberText() const {
    if (const auto* integer = as<std::int64_t>()) return std::to_string(*integer);
    if (const auto* value = as<double>()) {
        return std::isfinite(*value) ? std::optional(canonicalNumber(*value)) : std::nullopt;
    }
    if (const auto* decimal = as<JSONDecimal>()) return decimal->text;
    if (const auto* number = as<JSONUnrepresentableNumber>()) return number->text;
    return std::nullopt;
}

std::string_view JSONValue::kindName() const {
    constexpr std::array<std::string_view, std::variant_size_v<Storage>> names{
        "null", "a boolean", "a number", "a number", "a number", "a number", "a string", "a list", "an object"};
    return names[storage.index()];
}

bool operator==(const JSONValue& left, const JSONValue& right) {
    return left.storage == right.storage;
}

}  // namespace vostrel
