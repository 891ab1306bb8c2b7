#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace vostrel {

/// A SHA-256 digest (FIPS 180-4).
struct SHA256Digest {
    std::array<std::uint8_t, 32> bytes{};

    /// In lowercase hexadecimal, two digits a byte.
    [[nodiscard]] std::string text() const;

    friend auto operator<=>(const SHA256Digest&, const SHA256Digest&) = default;
};

/// Digests bytes that come piece by piece, with the system's own implementation. One thread uses an object.
class SHA256 {
public:
    SHA256();
    SHA256(const SHA256&) = delete;
    SHA256& operator=(const SHA256&) = delete;
    ~SHA256();

    void update(std::span<const std::byte> bytes);
    /// Of all that came; the object begins anew.
    [[nodiscard]] SHA256Digest finish();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace vostrel
