#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vostrel {

/// A second path of a folder that is mounted twice.
struct MountAlias {
    /// Which folder of those at or below the path that was asked for, relative to it; empty for the path itself.
    std::string below;
    /// Where the mounts show the same.
    std::filesystem::path path;

    friend bool operator==(const MountAlias&, const MountAlias&) = default;
};

/// Where else the system's mounts show what lies at this path, which goes through no link, or folders below it: of
/// "/mnt/x/new", where "/home/ann/.ssh" is mounted a second time at "/mnt/x", "/home/ann/.ssh/new"; of "/data", where
/// "/data/papers" is mounted at "/home/ann/Documents", that for "papers". Nothing need exist at the path. Empty where
/// the system mounts nothing twice, or does not say. Safe on any thread.
[[nodiscard]] std::vector<MountAlias> mountAliasesOf(const std::filesystem::path& path);

}  // namespace vostrel
