#include "stores/JSONCoder.h"

#include <fmt/format.h>

#include "base/UnicodeText.h"
#include "stores/DateText.h"
#include "stores/JSONNumber.h"

namespace vostrel {

namespace {

template <class Kind>
Decoded<Kind> only(const JSONValue& value, std::string_view kind) {
    const auto* content = value.as<Kind>();
    if (!content) return json::expected(kind, value);
    return *content;
}

bool isPlainText(std::string_view path) {
    return !path.contains('\0') && isValidUTF8(path);
}

std::optional<char> byteOfHex(std::string_view digits) {
    unsigned char byte = 0;
    const auto* const begin = digits.data();
    const auto* const end = begin + digits.size();
    const auto parsed = std::from_chars(begin, end, byte, 16);
    if (digits.size() != 2 || parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    return static_cast<char>(byte);
}

}  // namespace

namespace json {

Decoded<std::string> wholeNumber(const JSONValue& value) {
    const auto text = value.numberText();
    if (!text) return expected("a whole number", value);
    if (auto digits = integralText(*text)) return std::move(*digits);
    return jsonFault(fmt::format("{} is not a whole number that fits here.", *text));
}

std::unexpected<JSONError> outOfRange(std::string_view number) {
    return jsonFault(fmt::format("{} does not fit here.", number));
}

Decoded<const JSONArray*> arrayIn(const JSONValue& value) {
    const auto* array = value.as<JSONArray>();
    if (!array) return expected("a list", value);
    return array;
}

}  // namespace json

Decoded<bool> JSONCoder<bool>::decode(const JSONValue& value) {
    return only<bool>(value, "a boolean");
}

Decoded<double> JSONCoder<double>::decode(const JSONValue& value) {
    const auto text = value.numberText();
    if (!text) return json::expected("a number", value);
    if (const auto number = nearestDouble(*text)) return *number;
    return json::outOfRange(*text);
}

Decoded<std::string> JSONCoder<std::string>::decode(const JSONValue& value) {
    return only<std::string>(value, "a string");
}

JSONValue JSONCoder<std::filesystem::path>::encode(const std::filesystem::path& value) {
    const std::string& bytes = value.native();
    if (isPlainText(bytes)) return bytes;
    std::string text;
    for (const auto character : graphemes(bytes)) {
        if (isPlainText(character)) {
            text += character;
        } else {
            text += '\0';
            text += fmt::format("{:02x}", static_cast<unsigned char>(character.front()));
        }
    }
    return text;
}

Decoded<std::filesystem::path> JSONCoder<std::filesystem::path>::decode(const JSONValue& value) {
    const auto text = decodeJSON<std::string>(value);
    if (!text) return std::unexpected(text.error());
    std::string bytes;
    std::string_view rest = *text;
    for (auto mark = rest.find('\0'); mark != std::string_view::npos; mark = rest.find('\0')) {
        const auto byte = byteOfHex(rest.substr(mark + 1, 2));
        if (!byte) return jsonFault("A path holds no U+0000.");
        bytes.append(rest.substr(0, mark)).push_back(*byte);
        rest.remove_prefix(mark + 3);
    }
    return std::filesystem::path(bytes.append(rest));
}

JSONValue JSONCoder<Date>::encode(Date value) {
    return dateText(value);
}

Decoded<Date> JSONCoder<Date>::decode(const JSONValue& value) {
    const auto text = decodeJSON<std::string>(value);
    if (!text) return std::unexpected(text.error());
    if (const auto date = dateFromText(*text)) return *date;
    return jsonFault("Not an ISO 8601 date: " + *text);
}

Decoded<Uuid> JSONCoder<Uuid>::decode(const JSONValue& value) {
    const auto text = decodeJSON<std::string>(value);
    if (!text) return std::unexpected(text.error());
    if (const auto uuid = Uuid::parse(*text)) return *uuid;
    return jsonFault("Not a UUID: " + *text);
}

}  // namespace vostrel
