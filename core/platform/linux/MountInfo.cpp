#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#include "platform/MountAliases.h"

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

/// The mount that shows the path: the innermost, and of several at one place the one that covers the others.
const MountInfo* mountAround(const std::vector<MountInfo>& mounts, const std::filesystem::path& path) {
    const MountInfo* innermost = nullptr;
    for (const auto& mount : mounts) {
        if (!below(mount.mountPoint.native(), path.native())) continue;
        const bool isFurtherIn =
            innermost == nullptr || mount.mountPoint.native().size() >= innermost->mountPoint.native().size();
        if (isFurtherIn) innermost = &mount;
    }
    return innermost;
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

std::vector<std::filesystem::path> otherPathsAmong(const std::vector<MountInfo>& mounts,
                                                   const std::filesystem::path& path) {
    std::vector<std::filesystem::path> others;
    const MountInfo* own = mountAround(mounts, path);
    if (own == nullptr) return others;
    const auto inside = joined(own->root, below(own->mountPoint.native(), path.native()).value_or(""));
    for (const auto& mount : mounts) {
        if (&mount == own || mount.device != own->device) continue;
        const auto rest = below(mount.root.native(), inside.native());
        if (rest) others.push_back(joined(mount.mountPoint, *rest));
    }
    return others;
}

std::vector<std::filesystem::path> otherPathsOf(const std::filesystem::path& path) {
    return otherPathsAmong(readMountInfo(), path);
}

}  // namespace vostrel
