#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vostrel {

/// A 128-bit identifier. Its text is the standard one of 36 characters, written in upper case and read in either.
class Uuid {
public:
    constexpr Uuid() = default;
    explicit constexpr Uuid(std::array<std::uint8_t, 16> raw) : bytes(raw) {}

    /// A random one (version 4).
    static Uuid random();
    static std::optional<Uuid> parse(std::string_view text);

    [[nodiscard]] std::string text() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> bytes{};
};

}  // namespace vostrel
