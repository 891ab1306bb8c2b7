#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "stores/JSONValue.h"

namespace vostrel {

// What a tool's list says, where it says so: values inside values, empty where there are none of that kind.

[[nodiscard]] inline const JSONValue* valueIn(const JSONValue* value, std::string_view key) {
    const auto* object = value != nullptr ? value->as<JSONObject>() : nullptr;
    return object != nullptr ? object->find(key) : nullptr;
}

[[nodiscard]] inline std::string textIn(const JSONValue* value, std::string_view key) {
    const JSONValue* inner = valueIn(value, key);
    const auto* text = inner != nullptr ? inner->as<std::string>() : nullptr;
    return text != nullptr ? *text : std::string();
}

[[nodiscard]] inline JSONArray listIn(const JSONValue* value, std::string_view key) {
    const JSONValue* inner = valueIn(value, key);
    const auto* list = inner != nullptr ? inner->as<JSONArray>() : nullptr;
    return list != nullptr ? *list : JSONArray();
}

[[nodiscard]] inline std::vector<JSONMember> membersIn(const JSONValue* value, std::string_view key) {
    const JSONValue* inner = valueIn(value, key);
    const auto* object = inner != nullptr ? inner->as<JSONObject>() : nullptr;
    return object != nullptr ? object->members() : std::vector<JSONMember>();
}

}  // namespace vostrel
