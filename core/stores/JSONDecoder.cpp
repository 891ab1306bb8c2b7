#include <simdjson.h>

#include <algorithm>

#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

using simdjson::ondemand::json_type;

std::unexpected<JSONError> damaged(simdjson::error_code error) {
    return jsonFault(simdjson::error_message(error));
}

class JSONReader {
public:
    explicit JSONReader(JSONDecoder::WantedKeys choice) : wanted(choice) {}

    Decoded<JSONValue> read(simdjson::simdjson_result<simdjson::ondemand::value> found) {
        simdjson::ondemand::value value;
        if (const auto error = found.get(value)) return damaged(error);
        json_type type{};
        if (const auto error = value.type().get(type)) return damaged(error);
        switch (type) {
            case json_type::array:
                return nested([&] { return readArray(value); });
            case json_type::object:
                return nested([&] { return readObject(value); });
            case json_type::string:
                return readString(value);
            default:
                return readToken(value.raw_json_token());
        }
    }

private:
    template <class Read>
    Decoded<JSONValue> nested(Read readContent) {
        if (depth == deepestJSON) return jsonFault("It is nested too deeply.");
        ++depth;
        auto content = readContent();
        --depth;
        return content;
    }

    Decoded<JSONValue> readArray(simdjson::ondemand::value value) {
        simdjson::ondemand::array found;
        if (const auto error = value.get_array().get(found)) return damaged(error);
        JSONArray array;
        for (auto element : found) {
            auto read = this->read(element);
            if (!read) return std::unexpected(std::move(read).error().under(array.size()));
            array.push_back(std::move(*read));
        }
        return JSONValue(std::move(array));
    }

    Decoded<JSONValue> readObject(simdjson::ondemand::value value) {
        simdjson::ondemand::object found;
        if (const auto error = value.get_object().get(found)) return damaged(error);
        std::vector<JSONMember> members;
        for (auto field : found) {
            std::string_view key;
            if (const auto error = field.unescaped_key().get(key)) return damaged(error);
            if (depth == 1 && !wanted(key)) continue;
            auto read = this->read(field.value());
            if (!read) return std::unexpected(std::move(read).error().under(key));
            members.emplace_back(std::string(key), std::move(*read));
        }
        return JSONValue(JSONObject(std::move(members)));
    }

    static Decoded<JSONValue> readString(simdjson::ondemand::value value) {
        std::string_view text;
        if (const auto error = value.get_string().get(text)) return damaged(error);
        return JSONValue(text);
    }

    /// A literal or a number; simdjson finds where it ends, its text is checked here.
    static Decoded<JSONValue> readToken(std::string_view token) {
        token = token.substr(0, token.find_last_not_of(" \t\n\r") + 1);
        if (token == "null") return JSONValue();
        if (token == "true") return JSONValue(true);
        if (token == "false") return JSONValue(false);
        if (auto number = JSONValue::number(token)) return std::move(*number);
        return jsonFault("It has a word or number that JSON does not know.");
    }

    JSONDecoder::WantedKeys wanted;
    int depth = 0;
};

}  // namespace

Decoded<JSONValue> JSONDecoder::decode(std::string_view bytes) const {
    // As the one element of a list, so that a text of a single word or number is read like any other value.
    simdjson::padded_string text(bytes.size() + 2);
    *std::ranges::copy(bytes, std::ranges::copy(std::string_view("["), text.data()).out).out = ']';
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document document;
    simdjson::ondemand::array values;
    if (const auto error = parser.iterate(text).get(document)) return damaged(error);
    if (const auto error = document.get_array().get(values)) return damaged(error);

    std::optional<Decoded<JSONValue>> content;
    for (auto value : values) {
        if (content) return jsonFault("More than one value follows another.");
        content = JSONReader(wanted).read(value);
        if (!*content) return std::move(*content);
    }
    if (!content) return jsonFault("There is no value.");
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) return jsonFault("More follows the value.");
    return std::move(*content);
}

}  // namespace vostrel
