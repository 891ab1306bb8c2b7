#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/MountAliases.h"

namespace vostrel {

/// One line of the kernel's mount table.
struct MountInfo {
    std::uint64_t id = 0;
    /// The file system by its device number, "8:1", and which of its folders is mounted: "/" for the whole of it.
    std::string device;
    std::filesystem::path root;
    std::filesystem::path mountPoint;
    /// "ext4", or "fuse.sshfs" where the file system names a kind of its own.
    std::string type;
    /// What is mounted: "/dev/sda2", "tmpfs", "server:/share".
    std::string source;

    friend bool operator==(const MountInfo&, const MountInfo&) = default;
};

/// Reads one line of `mountinfo`, its octal escapes undone; nothing where it has another shape.
[[nodiscard]] std::optional<MountInfo> parseMountInfo(std::string_view line);

/// The mounts of the calling thread's namespace, in the kernel's order: a later one of the same point covers an
/// earlier one. Empty where /proc is not to be had.
[[nodiscard]] std::vector<MountInfo> readMountInfo();

/// Where else these mounts show what lies at the path, or below it. `around` is the id of the mount that the path lies
/// on: its text alone does not tell a mount from one that covers it.
[[nodiscard]] std::vector<MountAlias> mountAliasesAmong(const std::vector<MountInfo>& mounts, std::uint64_t around,
                                                        const std::filesystem::path& path);

}  // namespace vostrel
