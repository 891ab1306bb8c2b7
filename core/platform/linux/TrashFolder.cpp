#include "platform/linux/TrashFolder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/UserAccount.h"

namespace vostrel::linux_platform {

namespace {

constexpr std::array<const char*, 3> partsOfHomeTrash{".local", "share", "Trash"};
constexpr const char* sharedTrash = ".Trash";
constexpr const char* ownTrash = ".Trash-";

/// Only for going below it: a folder may let the user through that they cannot list.
OwnedDescriptor openBelow(int folder, const char* name) {
    return OwnedDescriptor(::openat(folder, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool isSameEntry(const FileStatus& one, const FileStatus& other) {
    return one.device == other.device && one.inode == other.inode;
}

/// A folder and those above it as far as its mount reaches.
struct FoldersOfMount {
    std::vector<FileStatus> innermostFirst;
    OwnedDescriptor top;
};

std::expected<FoldersOfMount, int> foldersOfMount(int folder) {
    FoldersOfMount found;
    found.top = openBelow(folder, ".");
    while (true) {
        if (!found.top.isOpen()) return std::unexpected(errno);
        const auto status = statusOfOpen(found.top.get());
        if (!status) return std::unexpected(status.error());
        // What is mounted nowhere below "/", as in a changed root, ends where going up stays.
        if (!found.innermostFirst.empty() && isSameEntry(*status, found.innermostFirst.back())) return found;
        found.innermostFirst.push_back(*status);
        if (status->isMountRoot) return found;
        found.top = openBelow(found.top.get(), "..");
    }
}

/// How much there is of the folders that lead to the home's Trash.
struct HomeTrash {
    OwnedDescriptor deepest;
    std::filesystem::path path;
    std::size_t partsFound = 0;
    FileStatus status;

    [[nodiscard]] bool exists() const { return partsFound == partsOfHomeTrash.size(); }
};

std::expected<HomeTrash, int> findHomeTrash(const std::filesystem::path& home) {
    HomeTrash found{OwnedDescriptor(openFolder(home)), home, 0, {}};
    if (!found.deepest.isOpen()) return std::unexpected(errno);
    while (!found.exists()) {
        const char* part = partsOfHomeTrash.at(found.partsFound);
        auto next = openBelow(found.deepest.get(), part);
        if (!next.isOpen()) break;
        found.deepest = std::move(next);
        found.path /= part;
        ++found.partsFound;
    }
    const auto status = statusOfOpen(found.deepest.get());
    if (!status) return std::unexpected(status.error());
    found.status = *status;
    return found;
}

std::unexpected<std::string> refusalToOpen(int folder, const char* name, const std::filesystem::path& path, int error) {
    constexpr const char* moveAway = "Move it away and try again.";
    const auto status = statusOfEntry(folder, name);
    if (status && status->type == EntryType::link) return refusal(fmt::format("{} is a link", path.native()), moveAway);
    if (error == ENOTDIR) return refusal(fmt::format("{} is not a folder", path.native()), moveAway);
    return refusal(fmt::format("{} could not be opened ({})", path.native(), std::generic_category().message(error)));
}

using Opened = std::expected<OwnedDescriptor, std::string>;

Opened openOrMake(int folder, const char* name, const std::filesystem::path& path) {
    auto opened = openBelow(folder, name);
    if (!opened.isOpen() && errno == ENOENT) {
        if (::mkdirat(folder, name, S_IRWXU) != 0 && errno != EEXIST) {
            return refusal(
                fmt::format("{} could not be made ({})", path.native(), std::generic_category().message(errno)));
        }
        opened = openBelow(folder, name);
    }
    if (!opened.isOpen()) return refusalToOpen(folder, name, path, errno);
    return opened;
}

/// Whether a folder of the Trash may take what others must not lay hands on.
std::expected<void, std::string> requireOwn(int folder, const std::filesystem::path& path, std::uint64_t mount) {
    constexpr unsigned writableByOthers = S_IWGRP | S_IWOTH;
    const auto status = statusOfOpen(folder);
    if (!status) {
        return refusal(fmt::format("{} could not be checked ({})", path.native(),
                                   std::generic_category().message(status.error())));
    }
    if (status->owner != effectiveUserID()) return refusal(fmt::format("{} belongs to another user", path.native()));
    if ((status->mode & writableByOthers) != 0) {
        return refusal(fmt::format("other users may write to {}", path.native()),
                       "Take this permission away and try again.");
    }
    if (status->mount != mount) return refusal(fmt::format("{} is on another disk", path.native()));
    return {};
}

Opened openOwn(int folder, const char* name, const std::filesystem::path& path, std::uint64_t mount) {
    auto opened = openOrMake(folder, name, path);
    if (!opened) return opened;
    if (auto own = requireOwn(opened->get(), path, mount); !own) return std::unexpected(std::move(own.error()));
    return opened;
}

/// Opens the Trash of this name and the two folders in it.
std::expected<TrashFolder, std::string> openTrash(int folder, const char* name, std::filesystem::path path,
                                                  std::uint64_t mount) {
    const auto opened = openOwn(folder, name, path, mount);
    if (!opened) return std::unexpected(opened.error());
    auto files = openOwn(opened->get(), "files", path / "files", mount);
    if (!files) return std::unexpected(files.error());
    auto info = openOwn(opened->get(), "info", path / "info", mount);
    if (!info) return std::unexpected(info.error());
    return TrashFolder{std::move(path), std::move(*files), std::move(*info), {}};
}

std::expected<TrashFolder, std::string> openHomeTrash(HomeTrash home, std::uint64_t mount) {
    if (home.exists()) return openTrash(home.deepest.get(), ".", home.path, mount);
    while (home.partsFound + 1 < partsOfHomeTrash.size()) {
        const char* part = partsOfHomeTrash.at(home.partsFound++);
        home.path /= part;
        auto opened = openOrMake(home.deepest.get(), part, home.path);
        if (!opened) return std::unexpected(opened.error());
        home.deepest = std::move(*opened);
    }
    return openTrash(home.deepest.get(), partsOfHomeTrash.back(), home.path / partsOfHomeTrash.back(), mount);
}

/// The Trash at the top of a disk: a folder of the user's own in one that an administrator made for all, which must be
/// one where nobody can take away what is another's, or else beside it.
std::expected<TrashFolder, std::string> openDiskTrash(int top, const std::filesystem::path& topPath,
                                                      std::uint64_t mount) {
    const std::string user = std::to_string(effectiveUserID());
    const auto shared = openBelow(top, sharedTrash);
    const auto status = statusOfOpen(shared.get());
    const bool isForAll = status && (status->mode & S_ISVTX) != 0;
    auto trash = isForAll ? openTrash(shared.get(), user.c_str(), topPath / sharedTrash / user, mount)
                          : openTrash(top, (ownTrash + user).c_str(), topPath / (ownTrash + user), mount);
    if (trash) trash->top = topPath;
    return trash;
}

bool isNameOfDiskTrash(const std::string& name) {
    return name == sharedTrash || name.starts_with(ownTrash);
}

/// The path of the folder that lies so many components further up.
std::filesystem::path above(std::filesystem::path path, std::size_t components) {
    for (; components > 0; --components)
        path = path.parent_path();
    return path;
}

bool isIn(const std::vector<FileStatus>& folders, std::int32_t device, std::uint64_t inode) {
    return std::ranges::any_of(
        folders, [&](const FileStatus& folder) { return folder.device == device && folder.inode == inode; });
}

/// Refuses what already lies in a Trash, and what a Trash lies in.
std::expected<void, std::string> requireApart(const TrashItem& item, const FoldersOfMount& around,
                                              const std::filesystem::path& top, const HomeTrash& home) {
    const bool isAtTop = around.innermostFirst.size() == 1;
    const bool isUnderDiskTrash = isNameOfDiskTrash(*item.path.lexically_relative(top).begin());
    const bool isInHomeTrash = home.exists() && isIn(around.innermostFirst, home.status.device, home.status.inode);
    if ((isUnderDiskTrash && !isAtTop) || isInHomeTrash) return refusal("it is in the Trash already");
    const auto aroundHome = foldersOfMount(home.deepest.get());
    if (isUnderDiskTrash || !aroundHome || isIn(aroundHome->innermostFirst, item.device, item.inode)) {
        return refusal("it holds the Trash");
    }
    return {};
}

}  // namespace

std::unexpected<std::string> refusal(std::string_view because, std::string_view advice) {
    return std::unexpected(fmt::format("Vostrel could not move it to the Trash because {}, so it left it alone.{}{}",
                                       because, advice.empty() ? "" : " ", advice));
}

std::expected<TrashFolder, std::string> openTrashFor(const TrashItem& item, std::uint64_t mount,
                                                     const std::filesystem::path& home) {
    const auto around = foldersOfMount(item.openParent);
    if (!around) {
        return refusal(fmt::format("the folders above it could not be checked ({})",
                                   std::generic_category().message(around.error())));
    }
    auto homeTrash = findHomeTrash(home);
    if (!homeTrash) {
        return refusal(fmt::format("{} could not be opened ({})", home.native(),
                                   std::generic_category().message(homeTrash.error())));
    }
    const auto top = above(item.path, around->innermostFirst.size());
    if (auto apart = requireApart(item, *around, top, *homeTrash); !apart) {
        return std::unexpected(std::move(apart.error()));
    }
    if (homeTrash->status.mount == mount) return openHomeTrash(std::move(*homeTrash), mount);
    return openDiskTrash(around->top.get(), top, mount);
}

}  // namespace vostrel::linux_platform
