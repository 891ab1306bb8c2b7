#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/SystemError.h"
#include "stores/FileWriting.h"
#include "stores/StoreError.h"

namespace vostrel {

/// One file as bytes: read whole, moved aside when damaged, and replaced as a whole or not at all.
///
/// Replacing writes a temporary file beside it (".name.UUID.tmp"), brings that to the disk, and renames it onto the
/// name; a crash at any moment leaves the old file or the new one, and at worst a temporary file that nothing reads.
/// Holds no state between calls; any thread.
struct StoredFile {
    /// No record comes near it; what is larger is no record, and must not fill the memory.
    static constexpr std::int64_t mostBytes = std::int64_t{1} << 30;

    std::filesystem::path directory;
    std::string name;
    /// The exact permission bits. Without: those of the file that is replaced, else what the process's umask leaves.
    std::optional<std::uint16_t> mode;
    FileWriter writer = systemWrite;

    [[nodiscard]] std::filesystem::path path() const { return directory / name; }

    /// Fails with `ENOENT` only when there is no such file. Whatever is no regular file, links included, fails and is
    /// not waited for.
    [[nodiscard]] std::expected<std::string, SystemError> read() const;

    /// Renames the file to "stem.corrupt-20250303-090507.json", or with "-1" to "-99" where that is taken. Where it
    /// then lies; nothing when it could not be moved.
    [[nodiscard]] std::optional<std::filesystem::path> moveAside(Date now) const;

    /// Removes the temporary files that programs which were killed left behind: the user's own regular files of exactly
    /// such names. Only while no other program can be saving.
    void removeLeftovers() const;

    [[nodiscard]] std::expected<void, StoreError> makeDirectory() const;
    [[nodiscard]] std::expected<void, StoreError> replace(std::string_view bytes) const;
};

}  // namespace vostrel
