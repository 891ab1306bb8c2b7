#include "platform/VolumeFacts.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

#include "base/SystemError.h"
#include "base/Uuid.h"
#include "platform/OwnedDescriptor.h"
#include "platform/linux/MountInfo.h"

namespace vostrel {

namespace {

/// The answer to FS_IOC_GETFSUUID, which headers older than Linux 6.9 do not name.
struct FileSystemUUID {
    std::uint8_t length;
    std::array<std::uint8_t, 16> bytes;
};
constexpr unsigned long getFileSystemUUID = _IOR(0x15, 0, FileSystemUUID);

/// The answer to ext4's own question for it, which has been there longer (Linux 5.19) and answers where the general
/// one does not know.
struct Ext4UUID {
    std::uint32_t length = 16;
    std::uint32_t flags = 0;
    std::array<std::uint8_t, 16> bytes{};
};
constexpr unsigned long ext4UUID = _IOR('f', 44, std::uint64_t);

std::optional<struct statx> extendedFacts(int file, unsigned mask) {
    struct statx facts{};
    if (::statx(file, "", AT_EMPTY_PATH, mask, &facts) != 0) return std::nullopt;
    return facts;
}

std::optional<MountInfo> mountOf(int file) {
    const auto identity = mountIdentity(file);
    if (!identity) return std::nullopt;
    auto mounts = readMountInfo();
    const auto found = std::ranges::find(mounts, identity->mount, &MountInfo::id);
    if (found == mounts.end()) return std::nullopt;
    return std::move(*found);
}

std::optional<std::string> typeByMagic(int file) {
    struct statfs facts{};
    if (::fstatfs(file, &facts) != 0) return std::nullopt;
    switch (static_cast<std::uint32_t>(facts.f_type)) {
        case 0xEF53:
            return "ext4";
        case 0x58465342:
            return "xfs";
        case 0x9123683E:
            return "btrfs";
        case 0xF2F52010:
            return "f2fs";
        case 0x01021994:
            return "tmpfs";
        case 0x794C7630:
            return "overlay";
        default:
            return std::nullopt;
    }
}

/// Network and pseudo file systems lie on no block device; these lie on none either, or do not show it, and yet keep
/// files of this machine.
bool keepsLocalFiles(std::string_view type, dev_t device) {
    constexpr std::array<std::string_view, 5> withoutBlockDevice{"btrfs", "bcachefs", "ubifs", "tmpfs", "overlay"};
    return major(device) != 0 || std::ranges::find(withoutBlockDevice, type) != withoutBlockDevice.end();
}

/// Some file systems answer with nothing but zeros when they do not know.
std::optional<std::string> textOf(const std::array<std::uint8_t, 16>& bytes) {
    if (std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; })) return std::nullopt;
    return Uuid(bytes).text();
}

std::optional<std::string> uuidFromFileSystem(int folder, std::string_view type) {
    FileSystemUUID answer{};
    if (::ioctl(folder, getFileSystemUUID, &answer) == 0 && answer.length == answer.bytes.size()) {
        if (auto uuid = textOf(answer.bytes)) return uuid;
    }
    Ext4UUID own;
    if (type == "ext4" && ::ioctl(folder, ext4UUID, &own) == 0) return textOf(own.bytes);
    return std::nullopt;
}

/// The block device that is mounted: btrfs shows another number in `stat` than its disk has.
dev_t mountedDevice(const std::optional<MountInfo>& mount, dev_t shown) {
    struct stat source{};
    if (mount && mount->source.starts_with('/') && ::stat(mount->source.c_str(), &source) == 0 &&
        S_ISBLK(source.st_mode)) {
        return source.st_rdev;
    }
    return shown;
}

std::optional<std::string> uuidFromDeviceList(dev_t device) {
    if (major(device) == 0) return std::nullopt;
    std::error_code failure;
    std::filesystem::directory_iterator entry("/dev/disk/by-uuid", failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        struct stat facts{};
        if (::stat(entry->path().c_str(), &facts) != 0 || facts.st_rdev != device) continue;
        const std::string name = entry->path().filename().native();
        const auto uuid = Uuid::parse(name);
        return uuid ? uuid->text() : name;
    }
    return std::nullopt;
}

std::optional<std::string> identifierFromStatistics(int folder) {
    struct statfs facts{};
    if (::fstatfs(folder, &facts) != 0) return std::nullopt;
    const auto high = static_cast<std::uint32_t>(facts.f_fsid.__val[0]);
    const auto low = static_cast<std::uint32_t>(facts.f_fsid.__val[1]);
    if (high == 0 && low == 0) return std::nullopt;
    return fmt::format("FSID-{:08X}{:08X}", high, low);
}

/// Each btrfs subvolume counts its inodes from the start, so their UUID alone would not tell two roots apart.
std::optional<std::string> withSubvolume(const std::string& uuid, int folder) {
    const auto subvolume = identifierFromStatistics(folder);
    if (!subvolume) return std::nullopt;
    return uuid + "/" + *subvolume;
}

}  // namespace

std::optional<MountIdentity> mountIdentity(int openFile) {
    const auto facts = extendedFacts(openFile, STATX_MNT_ID);
    if (!facts || (facts->stx_mask & STATX_MNT_ID) == 0) return std::nullopt;
    return MountIdentity{makedev(facts->stx_dev_major, facts->stx_dev_minor), facts->stx_mnt_id};
}

bool isMountRoot(int openFolder) {
    const auto facts = extendedFacts(openFolder, 0);
    if (!facts) return true;
    if ((facts->stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0) {
        return (facts->stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    }
    struct stat own{};
    struct stat above{};
    if (::fstat(openFolder, &own) != 0) return true;
    if (!S_ISDIR(own.st_mode)) return false;
    if (::fstatat(openFolder, "..", &above, 0) != 0) return true;
    return own.st_dev != above.st_dev || own.st_ino == above.st_ino;
}

bool isMountPoint(const std::filesystem::path& folder) {
    const OwnedDescriptor named(::open(folder.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!named.isOpen()) return !isMissing(errno);
    return isMountRoot(named.get());
}

std::optional<std::string> volumeUUID(int openFolder) {
    struct stat facts{};
    if (::fstat(openFolder, &facts) != 0) return std::nullopt;
    const auto mount = mountOf(openFolder);
    const auto type = mount ? std::optional(mount->type) : typeByMagic(openFolder);
    if (!type || !keepsLocalFiles(*type, facts.st_dev)) return std::nullopt;

    auto uuid = uuidFromFileSystem(openFolder, *type);
    if (!uuid) uuid = uuidFromDeviceList(mountedDevice(mount, facts.st_dev));
    if (!uuid && (type == "tmpfs" || type == "overlay")) return identifierFromStatistics(openFolder);
    return uuid && type == "btrfs" ? withSubvolume(*uuid, openFolder) : uuid;
}

std::optional<std::string> fileSystemType(int openFolder) {
    if (auto mount = mountOf(openFolder)) return std::move(mount->type);
    return typeByMagic(openFolder);
}

AccessTimes accessTimes(int openFolder) {
    struct statvfs facts{};
    if (::fstatvfs(openFolder, &facts) != 0) return AccessTimes::notKept;
    // A mount that notes only files' reads would make a folder look unused.
    return (facts.f_flag & (ST_NOATIME | ST_NODIRATIME)) == 0 ? AccessTimes::kept : AccessTimes::notKept;
}

// These set an entry's status-change time when it is created in a folder or moved into one.
bool recordsAddedDates(std::string_view fileSystemType) {
    constexpr std::array<std::string_view, 6> recording{"ext4", "xfs", "btrfs", "f2fs", "tmpfs", "overlay"};
    return std::ranges::find(recording, fileSystemType) != recording.end();
}

// An overlay notes no reads of the files in its lower layers.
bool recordsLastUsedDates(std::string_view fileSystemType, AccessTimes times) {
    return times == AccessTimes::kept && fileSystemType != "overlay" && recordsAddedDates(fileSystemType);
}

}  // namespace vostrel
