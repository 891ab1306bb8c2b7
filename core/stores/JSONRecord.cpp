#include "stores/JSONRecord.h"

#include <fmt/format.h>

#include <algorithm>

namespace vostrel::json {

namespace {

std::unexpected<JSONError> missing(std::string_view key) {
    return jsonFault(fmt::format("The key \"{}\" is missing.", key));
}

std::expected<void, JSONError> decodeField(const JSONField& field, const JSONObject& object, void* record) {
    const JSONValue* found = object.find(field.key);
    const bool isAbsent = found == nullptr || (found->isNull() && field.reading != JSONReading::required);
    if (isAbsent) {
        if (field.reading == JSONReading::required) return missing(field.key);
        return field.reading == JSONReading::optional ? field.decode(JSONValue(), record)
                                                      : std::expected<void, JSONError>();
    }
    auto decoded = field.decode(*found, record);
    const bool mayFail = field.reading == JSONReading::lenient || field.reading == JSONReading::eachReadable;
    if (decoded || mayFail) return {};
    return std::unexpected(std::move(decoded).error().under(field.key));
}

}  // namespace

JSONObject encodeFields(const void* record, std::span<const JSONField> fields, std::optional<std::string_view> type) {
    std::vector<JSONMember> members;
    members.reserve(fields.size() + 1);
    if (type) members.emplace_back("type", *type);
    for (const auto& field : fields) {
        if (auto value = field.encode(record)) members.emplace_back(std::string(field.key), std::move(*value));
    }
    return JSONObject(std::move(members));
}

std::expected<void, JSONError> decodeFields(const JSONValue& value, void* record, std::span<const JSONField> fields) {
    const auto object = objectIn(value);
    if (!object) return std::unexpected(object.error());
    for (const auto& field : fields) {
        if (auto decoded = decodeField(field, **object, record); !decoded) return decoded;
    }
    return {};
}

std::expected<void, JSONError> refuseOtherKeys(const JSONValue& value, std::span<const JSONField> fields,
                                               std::optional<std::string_view> type) {
    const auto object = objectIn(value);
    if (!object) return std::unexpected(object.error());
    for (const auto& [key, member] : (*object)->members()) {
        const bool isKnown = key == type || std::ranges::find(fields, key, &JSONField::key) != fields.end();
        if (!isKnown) return jsonFault(fmt::format("The key \"{}\" is not known here.", key));
    }
    return {};
}

Decoded<std::string> decodeType(const JSONValue& value) {
    const auto object = objectIn(value);
    if (!object) return std::unexpected(object.error());
    const auto* type = (*object)->find("type");
    if (!type) return missing("type");
    const auto* word = type->as<std::string>();
    if (!word) return std::unexpected(expected("a string", *type).error().under("type"));
    return *word;
}

Decoded<const JSONObject*> objectIn(const JSONValue& value) {
    const auto* object = value.as<JSONObject>();
    if (!object) return expected("an object", value);
    if (const auto* key = object->repeatedKey()) return jsonFault(fmt::format("The key \"{}\" is there twice.", *key));
    return object;
}

std::unexpected<JSONError> unknownWord(std::string_view word) {
    return jsonFault(fmt::format("\"{}\" is not a known word here.", word));
}

std::unexpected<JSONError> expected(std::string_view kind, const JSONValue& found) {
    return jsonFault(fmt::format("Expected {}, found {}.", kind, found.kindName()));
}

}  // namespace vostrel::json
