#include "base/UnicodeText.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace vostrel {

namespace {

constexpr char lowerASCII(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

const utf8proc_uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

void appendLowerASCII(std::string& out, std::string_view text) {
    const auto start = static_cast<std::ptrdiff_t>(out.size());
    out.append(text);
    std::for_each(out.begin() + start, out.end(), [](char& letter) { letter = lowerASCII(letter); });
}

/// The text mapped by utf8proc, or nothing where it is not valid UTF-8.
std::unique_ptr<char, decltype(&std::free)> mapped(std::string_view text, int options, std::size_t& length) {
    utf8proc_uint8_t* raw = nullptr;
    const auto size = utf8proc_map(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &raw,
                                   static_cast<utf8proc_option_t>(options));
    length = size < 0 ? 0 : static_cast<std::size_t>(size);
    return {size < 0 ? nullptr : reinterpret_cast<char*>(raw), &std::free};
}

/// The spaces and line breaks of every script; a byte that is not UTF-8 (-1) is none.
bool isBlank(utf8proc_int32_t point) {
    constexpr utf8proc_int32_t nextLine = 0x85;
    if ((point >= '\t' && point <= '\r') || point == nextLine) return true;
    const auto category = utf8proc_category(point);
    return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
}

}  // namespace

bool isASCII(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t seen = 0;
    while (text.size() >= sizeof(seen)) {  // a word at a time: this is asked of every file's name
        std::uint64_t word = 0;
        std::memcpy(&word, text.data(), sizeof(word));
        seen |= word;
        text.remove_prefix(sizeof(word));
    }
    for (const char byte : text)
        seen |= static_cast<unsigned char>(byte);
    return (seen & highBits) == 0;
}

bool isValidUTF8(std::string_view text) {
    while (!text.empty()) {
        utf8proc_int32_t point = 0;
        const auto length = utf8proc_iterate(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &point);
        if (length <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

std::string repaired(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        utf8proc_int32_t point = 0;
        const auto length = utf8proc_iterate(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &point);
        valid += length > 0 ? text.substr(0, static_cast<std::size_t>(length)) : "\ufffd";
        text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    }
    return valid;
}

std::string precomposed(std::string_view text) {
    if (isASCII(text)) return std::string(text);
    std::size_t length = 0;
    const auto composed = mapped(text, UTF8PROC_COMPOSE | UTF8PROC_STABLE, length);
    return composed ? std::string(composed.get(), length) : std::string(text);
}

std::string folded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    appendFolded(out, text);
    return out;
}

void appendFolded(std::string& out, std::string_view text) {
    if (isASCII(text)) return appendLowerASCII(out, text);
    // Composing before folding settles the order of combining marks; folding may take a composed letter apart again.
    std::size_t length = 0;
    const auto composed = mapped(text, UTF8PROC_COMPOSE | UTF8PROC_STABLE, length);
    if (!composed) return appendLowerASCII(out, text);
    const auto caseless =
        mapped({composed.get(), length}, UTF8PROC_COMPOSE | UTF8PROC_STABLE | UTF8PROC_CASEFOLD, length);
    out.append(caseless.get(), length);
}

std::vector<std::string_view> graphemes(std::string_view text) {
    std::vector<std::string_view> clusters;
    utf8proc_int32_t previous = -1;
    utf8proc_int32_t state = 0;
    std::size_t start = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        utf8proc_int32_t point = -1;
        const auto rest = text.substr(at);
        auto length = utf8proc_iterate(bytesOf(rest), static_cast<utf8proc_ssize_t>(rest.size()), &point);
        if (length <= 0) {  // not UTF-8: one byte, joined with nothing
            length = 1;
            point = -1;
        }
        const bool breaks =
            at > start && (previous < 0 || point < 0 || utf8proc_grapheme_break_stateful(previous, point, &state));
        if (breaks) {
            clusters.push_back(text.substr(start, at - start));
            start = at;
        }
        if (point < 0) state = 0;
        previous = point;
        at += static_cast<std::size_t>(length);
    }
    if (at > start) clusters.push_back(text.substr(start));
    return clusters;
}

std::string_view trimmed(std::string_view text) {
    std::size_t first = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        utf8proc_int32_t point = -1;
        const auto rest = text.substr(at);
        const auto length = utf8proc_iterate(bytesOf(rest), static_cast<utf8proc_ssize_t>(rest.size()), &point);
        const std::size_t next = at + static_cast<std::size_t>(std::max<utf8proc_ssize_t>(length, 1));
        if (!isBlank(point)) {
            first = std::min(first, at);
            end = next;
        }
        at = next;
    }
    return text.substr(first, end > first ? end - first : 0);
}

}  // namespace vostrel
