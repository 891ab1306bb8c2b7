#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "filesystem/FileIdentity.h"

namespace vostrel {

/// The few facts about one path that the rest of the system compares: what it is, and whether it is still the same.
struct FileStat {
    FileIdentity identity;
    bool isSymlink = false;
    bool isDirectory = false;
    bool isRegularFile = false;

    /// Whose it is, and its permission bits.
    struct Ownership {
        std::uint32_t owner = 0;
        std::uint16_t mode = 0;

        friend bool operator==(const Ownership&, const Ownership&) = default;
    };

    /// Looks at the path itself and follows no link at its end. Nothing when there is nothing, or it may not be looked
    /// at.
    [[nodiscard]] static std::optional<FileStat> read(const std::filesystem::path& path);
    [[nodiscard]] static std::optional<Ownership> ownership(const std::filesystem::path& path);

    friend bool operator==(const FileStat&, const FileStat&) = default;
};

}  // namespace vostrel
