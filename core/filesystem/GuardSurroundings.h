#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "filesystem/FileIdentity.h"
#include "platform/MountAliases.h"
#include "platform/ProcessEnvironment.h"
#include "platform/SystemKind.h"
#include "platform/UserFolders.h"

namespace vostrel {

/// Everything that `PathGuards` wants to know of the user and the system. Tests fill it as they like.
///
/// The functions are called from any thread that asks the guards, and each may be called at any time.
struct GuardSurroundings {
    struct FileOwner {
        FileIdentity identity;
        std::uint32_t owner = 0;
    };

    /// The home folder acted in.
    std::filesystem::path home;
    /// The account's own home. When it is another one, nothing in it may be cleaned but what lies in `home`; when it
    /// is empty, `home` stands for it.
    std::filesystem::path accountHome;
    std::filesystem::path temporaryFolder;
    std::uint32_t userID = 0;
    SystemKind system = SystemKind::macOS;
    /// Where a package manager keeps what it installed; empty when none says so.
    std::filesystem::path packagePrefix;
    std::vector<UserFolder> userFolders;
    /// Where this program keeps its own records.
    std::vector<std::filesystem::path> ownFolders;

    /// The path with every link resolved, or the error number.
    std::function<std::expected<std::filesystem::path, int>(const std::filesystem::path&)> resolve;
    /// What a path leads to and who owns it; nothing when that cannot be read.
    std::function<std::optional<FileOwner>(const std::filesystem::path&)> examine;
    std::function<bool(const std::filesystem::path&)> isMountPoint;
    /// Where else mounts show what lies at or below a path without links.
    std::function<std::vector<MountAlias>(const std::filesystem::path&)> mountAliases =
        [](const std::filesystem::path&) { return std::vector<MountAlias>(); };
    std::function<bool(const std::filesystem::path&)> isInICloud;
    std::function<bool(const std::filesystem::path&)> isDatalessPath;

    /// The running user's, acting in this home as in the account's own.
    static GuardSurroundings of(const std::filesystem::path& home, const Environment& environment);
    /// The same, with the account's own home protected beside it.
    static GuardSurroundings of(const std::filesystem::path& home, const std::filesystem::path& accountHome,
                                const Environment& environment);
};

}  // namespace vostrel
