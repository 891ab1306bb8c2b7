#include "base/Uuid.h"

#include <fmt/format.h>

#include <random>

namespace vostrel {

namespace {

constexpr bool isHyphenPlace(std::size_t place) {
    return place == 8 || place == 13 || place == 18 || place == 23;
}

std::optional<std::uint8_t> hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
    if (digit >= 'a' && digit <= 'f') return static_cast<std::uint8_t>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F') return static_cast<std::uint8_t>(digit - 'A' + 10);
    return std::nullopt;
}

}  // namespace

Uuid Uuid::random() {
    std::random_device source;
    std::uniform_int_distribution<unsigned> anyByte(0, 255);
    std::array<std::uint8_t, 16> raw{};
    for (auto& byte : raw)
        byte = static_cast<std::uint8_t>(anyByte(source));
    raw[6] = static_cast<std::uint8_t>((raw[6] & 0x0F) | 0x40);  // version 4
    raw[8] = static_cast<std::uint8_t>((raw[8] & 0x3F) | 0x80);  // the variant that RFC 4122 defines
    return Uuid(raw);
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    std::array<std::uint8_t, 16> raw{};
    std::size_t digits = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-') return std::nullopt;
            continue;
        }
        const auto digit = hexDigit(text[place]);
        if (!digit) return std::nullopt;
        raw[digits / 2] = static_cast<std::uint8_t>(raw[digits / 2] << 4 | *digit);
        ++digits;
    }
    return Uuid(raw);
}

std::string Uuid::text() const {
    std::string out;
    out.reserve(36);
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPlace(out.size())) out += '-';
        out += fmt::format("{:02X}", byte);
    }
    return out;
}

}  // namespace vostrel
