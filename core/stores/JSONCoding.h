#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "stores/JSONCoder.h"
#include "stores/JSONError.h"
#include "stores/JSONValue.h"

namespace vostrel {

/// Deeper lists and objects are neither written nor read.
inline constexpr int deepestJSON = 512;

enum class JSONLayout { compact, pretty };

/// Writes JSON in the one form of all stored files: keys sorted, slashes as they are, pretty by two spaces a level.
class JSONEncoder {
public:
    explicit JSONEncoder(JSONLayout chosen) : layout(chosen) {}

    /// Fails for what JSON cannot say: a number that is not finite, text that is not UTF-8, too many levels.
    [[nodiscard]] std::expected<std::string, JSONError> encode(const JSONValue& value) const;

    template <class Value>
    [[nodiscard]] std::expected<std::string, JSONError> encode(const Value& value) const {
        return encode(encodeJSON(value));
    }

private:
    JSONLayout layout;
};

/// Reads one JSON text, which must be well formed to its last byte.
class JSONDecoder {
public:
    /// Says of each key of the outermost object whether its value is wanted.
    using WantedKeys = bool (*)(std::string_view key);

    JSONDecoder() = default;
    /// A decoder that passes over whatever is not wanted without building it: of such a value only the brackets and
    /// strings are looked at.
    explicit JSONDecoder(WantedKeys choice) : wanted(choice) {}

    [[nodiscard]] Decoded<JSONValue> decode(std::string_view bytes) const;

    template <class Value>
    [[nodiscard]] Decoded<Value> decode(std::string_view bytes) const {
        const auto value = decode(bytes);
        if (!value) return std::unexpected(value.error());
        return decodeJSON<Value>(*value);
    }

private:
    WantedKeys wanted = [](std::string_view) { return true; };
};

/// The one JSON convention of the system. Stateless; any thread.
struct JSONCoding {
    [[nodiscard]] static JSONEncoder encoder(JSONLayout layout) { return JSONEncoder(layout); }
    [[nodiscard]] static JSONDecoder decoder() { return {}; }
    [[nodiscard]] static JSONDecoder decoder(JSONDecoder::WantedKeys wanted) { return JSONDecoder(wanted); }
};

}  // namespace vostrel
