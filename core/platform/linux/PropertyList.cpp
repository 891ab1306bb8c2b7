#include "platform/PropertyList.h"

#include <plist/plist.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

constexpr int deepestList = 64;

struct Freeing {
    void operator()(void* memory) const { std::free(memory); }
};
using Text = std::unique_ptr<char, Freeing>;
using Steps = std::unique_ptr<void, Freeing>;

std::optional<PropertyList> read(plist_t node, int deepest);

/// Dates count from the first day of 2001.
Date dateOf(plist_t node) {
    constexpr std::int64_t beginning = 978'307'200;
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return Date::fromSeconds(beginning + seconds) + std::chrono::microseconds(microseconds);
}

std::optional<PropertyList> textOf(plist_t node) {
    char* raw = nullptr;
    plist_get_string_val(node, &raw);
    const Text text(raw);
    if (!text || !isValidUTF8(text.get())) return std::nullopt;
    return PropertyList{std::string(text.get())};
}

std::optional<PropertyList> arrayOf(plist_t node, int deepest) {
    PropertyList::Array array;
    plist_array_iter raw = nullptr;
    plist_array_new_iter(node, &raw);
    const Steps steps(raw);
    for (auto left = plist_array_get_size(node); left > 0; --left) {
        plist_t item = nullptr;
        plist_array_next_item(node, raw, &item);
        auto value = read(item, deepest);
        if (!value) return std::nullopt;
        array.push_back(*std::move(value));
    }
    return PropertyList{std::move(array)};
}

std::optional<PropertyList> dictionaryOf(plist_t node, int deepest) {
    PropertyList::Dictionary dictionary;
    plist_dict_iter raw = nullptr;
    plist_dict_new_iter(node, &raw);
    const Steps steps(raw);
    for (auto left = plist_dict_get_size(node); left > 0; --left) {
        char* rawKey = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, raw, &rawKey, &item);
        const Text key(rawKey);
        auto value = read(item, deepest);
        if (!key || !value) return std::nullopt;
        dictionary.emplace_back(key.get(), *std::move(value));
    }
    return PropertyList{std::move(dictionary)};
}

std::optional<PropertyList> read(plist_t node, int deepest) {
    if (node == nullptr || deepest == 0) return std::nullopt;
    switch (plist_get_node_type(node)) {
        case PLIST_STRING:
            return textOf(node);
        case PLIST_DATE:
            return PropertyList{dateOf(node)};
        case PLIST_ARRAY:
            return arrayOf(node, deepest - 1);
        case PLIST_DICT:
            return dictionaryOf(node, deepest - 1);
        default:
            return PropertyList{PropertyList::Other{}};
    }
}

}  // namespace

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    plist_t raw = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &raw);
    if (raw == nullptr) return std::nullopt;
    const std::unique_ptr<void, decltype(&plist_free)> root(raw, &plist_free);
    return read(raw, deepestList);
}

}  // namespace vostrel
