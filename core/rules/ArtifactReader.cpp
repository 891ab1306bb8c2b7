#include "rules/ArtifactReader.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "platform/FileContent.h"
#include "platform/Materialisation.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

/// No tool puts more files into one folder, and their memory has an end.
constexpr std::size_t mostNames = 200'000;

// Lists of packages are a few million bytes at most.
constexpr std::size_t longestList = 64U << 20U;

/// So many bytes of a file, or all; nothing when it could not be read. Follows no link.
std::optional<std::string> beginningOf(const std::string& file, std::size_t most) {
    const MaterialisationGuard noDownloads;
    if (!noDownloads.holds()) return std::nullopt;
    const OwnedDescriptor opened(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened.isOpen()) return std::nullopt;
    auto text = readBytes(opened.get(), most);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

bool leavesNoTrace(std::string_view name) {
    return name == ".DS_Store";  // put anywhere by looking at a folder
}

}  // namespace

void ArtifactContent::entry(const FolderEntry& entry) {
    if (leavesNoTrace(entry.name)) return;
    const bool isPlain = entry.error == 0 && entry.mountStatus == 0 && files.size() + links.size() < mostNames;
    if (isPlain && entry.type == EntryType::file) {
        files.emplace_back(entry.name);
        newest = std::max(newest, entry.modified);
    } else if (isPlain && entry.type == EntryType::link) {
        links.emplace_back(entry.name);
    } else {
        holdsOther = true;
    }
}

bool ArtifactContent::isRepository() const {
    constexpr std::array<std::string_view, 7> marks{".git", ".hg", ".svn", ".bzr", ".jj", "_darcs", ".fslckout"};
    const auto holds = [&](std::string_view name) {
        return std::ranges::find(folders, name) != folders.end() || std::ranges::binary_search(files, name) ||
               std::ranges::find(links, name) != links.end();
    };
    return std::ranges::any_of(marks, holds) || (holds("HEAD") && holds("objects") && holds("refs"));
}

ArtifactReader::ArtifactReader(FolderSource& from, std::optional<WalkVolume> onVolume, std::function<bool()> stopTest)
    : source(from), reader(from, ListingDetail::facts), volume(onVolume), stops(std::move(stopTest)) {}

std::optional<ArtifactContent> ArtifactReader::contentOf(const std::string& folder) {
    return contentOf(folder, volume);
}

std::optional<ArtifactContent> ArtifactReader::contentOnAnyVolume(const std::string& folder) {
    return contentOf(folder, std::nullopt);
}

std::optional<ArtifactContent> ArtifactReader::contentOf(const std::string& folder,
                                                         const std::optional<WalkVolume>& onVolume) {
    ListedFolder listed;
    auto notes = std::make_unique<ArtifactContent>();
    ArtifactContent& content = *notes;
    listed.notes = std::move(notes);
    listed.path = folder;
    listed.parentVolume = onVolume;
    reader.read(listed, stops);
    if (listed.result != ListedFolder::Result::listed) {
        if (listed.result == ListedFolder::Result::stopped) {
            troubled = SkipReason::timedOut;
        } else if (listed.error != ENOENT) {
            troubled = SkipReason::unreadable;
        }
        return std::nullopt;
    }
    content.path = folder;
    content.identity = {listed.status.device, listed.status.inode};
    for (const auto& subfolder : listed.subfolders)
        content.folders.emplace_back(listed.nameOf(subfolder));
    std::ranges::sort(content.files);
    std::ranges::sort(content.folders);
    content.newest = std::max(content.newest, listed.status.modified);
    content.changed = listed.status.changed;
    return std::move(content);
}

bool ArtifactReader::isTrueThroughout(const std::string& folder,
                                      const std::function<bool(const ArtifactContent&)>& test) {
    return !exists(folder) || isTrueBelow(folder, test, 0);
}

bool ArtifactReader::isTrueBelow(const std::string& folder, const std::function<bool(const ArtifactContent&)>& test,
                                 std::size_t depth) {
    const auto content = contentOf(folder);
    return content && depth <= deepest && test(*content) &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return isTrueBelow(fmt::format("{}/{}", folder, name), test, depth + 1);
           });
}

std::optional<std::string> ArtifactReader::textOf(const std::string& file) {
    auto text = beginningOf(file, longestList);
    if (!text && isFile(file)) troubled = SkipReason::unreadable;
    return text && text->size() < longestList ? text : std::nullopt;
}

bool ArtifactReader::areAlike(const std::string& file, const std::string& other) {
    const auto one = statusOf(file);
    const auto two = statusOf(other);
    if (!one || !two || one->type != EntryType::file || one->length != two->length || mustStop()) return false;
    const auto text = textOf(file);
    return text && text == textOf(other);
}

bool ArtifactReader::beginsWith(const std::string& file, std::string_view text) {
    const auto beginning = beginningOf(file, text.size());
    if (!beginning) troubled = SkipReason::unreadable;
    return beginning == text;
}

bool ArtifactReader::isFile(const std::string& path) {
    const auto status = statusOf(path);
    return status && status->type == EntryType::file;
}

std::optional<FileStatus> ArtifactReader::statusOf(const std::string& path) {
    const auto status = source.lookUp(path);
    return status ? std::optional(*status) : std::nullopt;
}

bool ArtifactReader::exists(const std::string& path) {
    const auto status = source.lookUp(path);
    return status || status.error() != ENOENT;
}

bool ArtifactReader::mustStop() {
    if (!stops || !stops()) return false;
    troubled = SkipReason::timedOut;
    return true;
}

}  // namespace vostrel
