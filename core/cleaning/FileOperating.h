#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "cleaning/Removal.h"
#include "filesystem/FileIdentity.h"

namespace vostrel {

/// The two things that cleaning does to an item. Tests put a recorder or a failing disk in its place.
class FileOperating {
public:
    virtual ~FileOperating() = default;

    /// Moves the item, if it is this one and lies in this folder, to the Trash. Gives the place where it went, nothing
    /// when the system did not say; fails with a sentence, and then the item is where it was.
    [[nodiscard]] virtual std::expected<std::optional<std::filesystem::path>, std::string> trash(
        const std::filesystem::path& item, FileIdentity identity, FileIdentity parent) = 0;

    /// Deletes the item under the limits. Never fails as a whole: what was done and what stayed is the answer.
    [[nodiscard]] virtual Removal remove(const std::filesystem::path& item, const RemovalLimits& limits) = 0;

    /// Removes what a Trash keeps beside an item of it, once the item itself was deleted.
    virtual void forgetTrashed(const std::filesystem::path& item) = 0;
};

}  // namespace vostrel
