#include "base/PrintableText.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>

namespace vostrel {

namespace {

/// One code point and its bytes; -1 and one byte where the text is not UTF-8.
struct Point {
    utf8proc_int32_t value = -1;
    std::string_view bytes;
};

Point firstPoint(std::string_view text) {
    utf8proc_int32_t value = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0) return {-1, text.substr(0, 1)};
    return {value, text.substr(0, static_cast<std::size_t>(length))};
}

/// Joiners shape letters and emoji and show nothing by themselves.
bool isJoiner(utf8proc_int32_t point) {
    return point == 0x200C || point == 0x200D;
}

bool isPrintable(utf8proc_int32_t point) {
    switch (utf8proc_category(point)) {
        case UTF8PROC_CATEGORY_CC:
        case UTF8PROC_CATEGORY_ZL:
        case UTF8PROC_CATEGORY_ZP:
            return false;
        case UTF8PROC_CATEGORY_CF:
            return isJoiner(point);
        default:
            return true;
    }
}

std::string escaped(const Point& point) {
    if (point.value == '\n') return "\\n";
    if (point.value == '\t') return "\\t";
    if (point.value == '\r') return "\\r";
    if (point.value < 0x80) return fmt::format("\\x{:02x}", static_cast<unsigned char>(point.bytes.front()));
    return fmt::format("\\u{{{:x}}}", point.value);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Point point = firstPoint(text);
        text.remove_prefix(point.bytes.size());
        if (point.value >= 0 && isPrintable(point.value)) {
            shown += point.bytes;
        } else {
            shown += escaped(point);
        }
    }
    return shown;
}

std::size_t columns(std::string_view printableText) {
    std::size_t count = 0;
    while (!printableText.empty()) {
        const Point point = firstPoint(printableText);
        printableText.remove_prefix(point.bytes.size());
        count += static_cast<std::size_t>(std::max(0, utf8proc_charwidth(point.value)));
    }
    return count;
}

}  // namespace vostrel
