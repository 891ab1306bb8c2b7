#include "filesystem/ScreenshotName.h"

#include <algorithm>
#include <array>
#include <span>

namespace vostrel {

namespace {

constexpr std::array<std::string_view, 3> beginnings{"Screenshot", "Screen Shot", "Screen Recording"};
constexpr std::array<std::string_view, 2> spaces{" ", "\u202F"};
constexpr std::array<std::string_view, 2> halves{"AM", "PM"};
constexpr std::array<std::string_view, 7> endings{"png", "jpg", "heic", "tiff", "pdf", "gif", "mov"};

/// Reads a name from left to right; each step says whether it found its part and goes past it.
struct Reader {
    std::string_view rest;

    bool text(std::string_view expected) {
        if (!rest.starts_with(expected)) return false;
        rest.remove_prefix(expected.size());
        return true;
    }

    bool oneOf(std::span<const std::string_view> texts) {
        return std::ranges::any_of(texts, [this](std::string_view expected) { return text(expected); });
    }

    bool digits(std::size_t least, std::size_t most) {
        std::size_t count = 0;
        while (count < most && count < rest.size() && rest[count] >= '0' && rest[count] <= '9')
            ++count;
        if (count < least) return false;
        rest.remove_prefix(count);
        return true;
    }

    bool date() { return digits(4, 4) && text("-") && digits(2, 2) && text("-") && digits(2, 2); }
    bool time() { return digits(1, 2) && text(".") && digits(2, 2) && text(".") && digits(2, 2); }
};

/// Goes past a part that may be missing.
template <class Part>
void optionally(Reader& reader, Part part) {
    Reader tried = reader;
    if (part(tried)) reader = tried;
}

}  // namespace

bool isScreenshotName(std::string_view name) {
    Reader reader{name};
    if (!reader.oneOf(beginnings) || !reader.text(" ") || !reader.date()) return false;
    if (!reader.text(" at ") || !reader.time()) return false;
    optionally(reader, [](Reader& half) { return half.oneOf(spaces) && half.oneOf(halves); });
    optionally(reader,
               [](Reader& copy) { return copy.text(" (") && copy.digits(1, copy.rest.size()) && copy.text(")"); });
    return reader.text(".") && reader.oneOf(endings) && reader.rest.empty();
}

}  // namespace vostrel
