#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// Writes a Git repository's index as the published format has it.
struct GitIndexBytes {
    std::uint32_t version = 2;
    std::size_t idLength = 20;
    /// Of every entry.
    std::uint32_t mode = 0100644;
    std::uint32_t flags = 0;
    std::uint32_t modifiedSeconds = 7;
    std::uint32_t modifiedNanoseconds = 7;
    std::uint32_t length = 7;
    std::string extensions{};

    [[nodiscard]] std::string naming(const std::vector<std::string>& names) const {
        std::string index = "DIRC" + number(version, 4) + number(static_cast<std::uint32_t>(names.size()), 4);
        std::string_view last;
        for (const std::string& name : names) {
            std::string entry = std::string(8, 't') + number(modifiedSeconds, 4) + number(modifiedNanoseconds, 4);
            entry += std::string(8, 'd') + number(mode, 4) + std::string(8, 'o') + number(length, 4);
            entry += std::string(idLength, 'i');
            entry += number(flags | static_cast<std::uint32_t>(std::min<std::size_t>(name.size(), 0xFFF)), 2);
            if ((flags & 0x4000) != 0) entry += std::string(2, '\0');
            if (version == 4) {
                const auto same = std::ranges::mismatch(last, name).in2 - name.begin();
                entry += dropping(last.size() - static_cast<std::size_t>(same));
                entry += name.substr(static_cast<std::size_t>(same)) + '\0';
            } else {
                entry += name;
                entry.resize((entry.size() + 8) / 8 * 8);
            }
            index += entry;
            last = name;
        }
        return index + extensions + std::string(idLength, 'c');
    }

    static std::string number(std::uint32_t value, int bytes) {
        std::string text;
        while (bytes-- > 0)
            text += static_cast<char>(value >> (8 * bytes) & 0xFFU);
        return text;
    }
    static std::string extension(std::string_view signature, const std::string& content) {
        return std::string(signature) + number(static_cast<std::uint32_t>(content.size()), 4) + content;
    }

private:
    /// Seven bits a byte, the highest first; every byte but the last has its top bit set and stands for one more.
    static std::string dropping(std::size_t count) {
        std::string text(1, static_cast<char>(count & 0x7FU));
        while ((count >>= 7U) != 0)
            text.insert(text.begin(), static_cast<char>(0x80U | (--count & 0x7FU)));
        return text;
    }
};

}  // namespace vostrel
