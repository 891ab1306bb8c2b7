#pragma once

#include <cstdint>
#include <string>

namespace vostrel {

/// A file that a rule was made for. A file is that one only while its name, volume and inode all agree.
struct PinnedFile {
    /// One path component in Unicode NFC.
    std::string name;
    std::string volumeUUID;
    std::uint64_t inode = 0;

    /// Whether it can name a chosen file: not empty, "." or "..", one component, in NFC.
    [[nodiscard]] static bool isName(const std::string& name);

    friend bool operator==(const PinnedFile&, const PinnedFile&) = default;
};

}  // namespace vostrel
