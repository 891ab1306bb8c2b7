#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#include "base/SystemError.h"
#include "platform/FileStatus.h"
#include "platform/MountPoints.h"

namespace vostrel {

namespace {

/// Spaces, tabs, line breaks and backslashes are written as \040 and the like.
std::string unescaped(std::string_view text) {
    const auto isOctal = [](char digit) { return digit >= '0' && digit <= '7'; };
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size() && isOctal(text[at + 1]) && isOctal(text[at + 2]) &&
            isOctal(text[at + 3])) {
            plain += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 + (text[at + 3] - '0'));
            at += 3;
        } else {
            plain += text[at];
        }
    }
    return plain;
}

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> found;
    while (!line.empty()) {
        const auto end = std::min(line.find(' '), line.size());
        found.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return found;
}

/// What follows the folder in the path, empty for the folder itself; nothing for a path that does not lie in it.
std::optional<std::string_view> below(std::string_view folder, std::string_view path) {
    if (folder == "/") folder = {};
    if (!path.starts_with(folder)) return std::nullopt;
    path.remove_prefix(folder.size());
    if (!path.empty() && path.front() != '/') return std::nullopt;
    return path.substr(std::min<std::size_t>(path.size(), 1));
}

std::filesystem::path joined(const std::filesystem::path& folder, std::string_view path) {
    return path.empty() ? folder : folder / path;
}

/// The mount that the path lies on, or the nearest folder above it that there is; 0 when that is not known.
std::uint64_t mountAround(std::filesystem::path path) {
    while (true) {
        const auto status = statusOfPath(path);
        if (status) return status->mount;
        if (!isMissing(status.error()) || !path.has_relative_path()) return 0;
        path = path.parent_path();
    }
}

}  // namespace

std::optional<MountInfo> parseMountInfo(std::string_view line) {
    constexpr std::size_t deviceField = 2;
    constexpr std::size_t rootField = 3;
    constexpr std::size_t mountPointField = 4;
    constexpr std::size_t firstOptionalField = 6;
    const auto fields = words(line);
    std::size_t separator = firstOptionalField;
    while (separator < fields.size() && fields[separator] != "-")
        ++separator;
    if (separator + 2 >= fields.size()) return std::nullopt;

    MountInfo mount;
    const auto id = fields[0];
    const auto [end, failure] = std::from_chars(id.data(), id.data() + id.size(), mount.id);
    if (failure != std::errc() || end != id.data() + id.size()) return std::nullopt;
    mount.device = fields[deviceField];
    mount.root = unescaped(fields[rootField]);
    mount.mountPoint = unescaped(fields[mountPointField]);
    mount.type = unescaped(fields[separator + 1]);
    mount.source = unescaped(fields[separator + 2]);
    return mount;
}

std::vector<MountInfo> readMountInfo() {
    std::vector<MountInfo> mounts;
    std::ifstream table("/proc/thread-self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        if (auto mount = parseMountInfo(line)) mounts.push_back(std::move(*mount));
    }
    return mounts;
}

std::vector<MountAlias> mountAliasesAmong(const std::vector<MountInfo>& mounts, std::uint64_t around,
                                          const std::filesystem::path& path) {
    std::vector<MountAlias> aliases;
    const auto own = std::ranges::find(mounts, around, &MountInfo::id);
    const auto rest = own == mounts.end() ? std::nullopt : below(own->mountPoint.native(), path.native());
    if (!rest) return aliases;
    const auto inside = joined(own->root, *rest);
    for (const auto& mount : mounts) {
        if (mount.id == own->id || mount.device != own->device) continue;
        if (const auto deeper = below(mount.root.native(), inside.native())) {
            aliases.push_back({"", joined(mount.mountPoint, *deeper)});
        } else if (const auto within = below(inside.native(), mount.root.native())) {
            aliases.push_back({std::string(*within), mount.mountPoint});
        }
    }
    return aliases;
}

std::vector<std::filesystem::path> mountPoints() {
    std::vector<std::filesystem::path> points;
    for (auto& mount : readMountInfo())
        points.push_back(std::move(mount.mountPoint));
    return points;
}

std::vector<MountAlias> mountAliasesOf(const std::filesystem::path& path) {
    return mountAliasesAmong(readMountInfo(), mountAround(path), path);
}

}  // namespace vostrel
