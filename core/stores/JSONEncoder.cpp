#include <fmt/format.h>

#include "base/UnicodeText.h"
#include "base/Visit.h"
#include "stores/JSONCoding.h"
#include "stores/JSONNumber.h"

namespace vostrel {

namespace {

using Written = std::expected<void, JSONError>;

class JSONWriter {
public:
    explicit JSONWriter(JSONLayout chosen) : layout(chosen) {}

    Written write(const JSONValue& value) {
        return visit(
            value.content(), [&](JSONNull) { return append("null"); },
            [&](bool flag) { return append(flag ? "true" : "false"); },
            [&](const std::string& text) { return writeString(text); },
            [&](const JSONArray& array) { return writeArray(array); },
            [&](const JSONObject& object) { return writeObject(object); },
            [&](const auto&) { return writeNumber(value); });
    }

    std::string out;

private:
    Written append(std::string_view text) {
        out += text;
        return {};
    }

    Written writeNumber(const JSONValue& value) {
        const auto text = value.numberText();
        if (!text || !isNumberToken(*text)) return jsonFault("JSON has no such number.");
        return append(*text);
    }

    Written writeString(std::string_view text) {
        if (!isValidUTF8(text)) return jsonFault("JSON has no text that is not UTF-8.");
        out += '"';
        for (const char letter : text)
            appendEscaped(letter);
        return append("\"");
    }

    void appendEscaped(char letter) {
        constexpr std::string_view special = "\"\\\b\f\n\r\t";
        constexpr std::string_view escapes = "\"\\bfnrt";
        if (const auto found = special.find(letter); found != std::string_view::npos) {
            out += '\\';
            out += escapes[found];
        } else if (static_cast<unsigned char>(letter) < 0x20) {
            out += fmt::format("\\u{:04x}", static_cast<unsigned>(letter));
        } else {
            out += letter;
        }
    }

    Written writeArray(const JSONArray& array) {
        if (auto opened = open('['); !opened) return opened;
        for (std::size_t index = 0; index < array.size(); ++index) {
            separate(index);
            if (auto written = write(array[index]); !written)
                return std::unexpected(std::move(written).error().under(index));
        }
        return close(']', array.empty());
    }

    Written writeObject(const JSONObject& object) {
        if (auto opened = open('{'); !opened) return opened;
        std::size_t index = 0;
        for (const auto& [key, value] : object.members()) {
            separate(index++);
            if (auto written = writeString(key); !written) return written;
            out += layout == JSONLayout::pretty ? ": " : ":";
            if (auto written = write(value); !written)
                return std::unexpected(std::move(written).error().under(std::string_view(key)));
        }
        return close('}', object.members().empty());
    }

    Written open(char bracket) {
        if (++depth > deepestJSON) return jsonFault("It is nested too deeply.");
        out += bracket;
        return {};
    }

    Written close(char bracket, bool isEmpty) {
        --depth;
        if (!isEmpty) breakLine();
        out += bracket;
        return {};
    }

    void separate(std::size_t index) {
        if (index > 0) out += ',';
        breakLine();
    }

    void breakLine() {
        if (layout == JSONLayout::compact) return;
        out += '\n';
        out.append(2 * static_cast<std::size_t>(depth), ' ');
    }

    JSONLayout layout;
    int depth = 0;
};

}  // namespace

std::expected<std::string, JSONError> JSONEncoder::encode(const JSONValue& value) const {
    JSONWriter writer(layout);
    if (auto written = writer.write(value); !written) return std::unexpected(std::move(written).error());
    return std::move(writer.out);
}

}  // namespace vostrel
