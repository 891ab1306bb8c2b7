#include "rules/GitRepositories.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>

#include "base/SystemError.h"
#include "platform/FileContent.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/Materialisation.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

/// Of a file that names a folder.
constexpr std::size_t longestPointer = 65'536;

/// A whole regular file directly in a folder, or the error number: `ENOENT` only where the folder has no such entry.
std::expected<std::string, int> contentOf(const std::filesystem::path& folder, const char* name, std::size_t longest) {
    const MaterialisationGuard noDownloads;
    const OwnedDescriptor opened(openFolder(folder));
    if (!opened.isOpen()) return std::unexpected(EIO);
    const OwnedDescriptor file(::openat(opened.get(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) return std::unexpected(errno);
    const auto status = statusOfOpen(file.get());
    if (!status || status->type != EntryType::file || status->isDataless) return std::unexpected(EIO);
    auto content = readBytes(file.get(), longest + 1);
    if (content && content->size() > longest) return std::unexpected(EFBIG);
    return content;
}

/// Where the repository of a worktree or submodule lies: "gitdir: ../.git/modules/name".
std::optional<std::filesystem::path> repositoryOf(const std::string& folder) {
    constexpr std::string_view begins = "gitdir: ";
    const auto pointer = contentOf(folder, ".git", longestPointer);
    if (!pointer || !pointer->starts_with(begins) || pointer->contains('\0')) return std::nullopt;
    const std::string place = pointer->substr(begins.size(), pointer->find_last_not_of("\r\n") + 1 - begins.size());
    if (place.empty()) return std::nullopt;
    return std::filesystem::path(folder) / place;
}

}  // namespace

GitRepositories::Answer GitRepositories::tracking(const std::string& folder) {
    for (auto slash = folder.rfind('/'); slash != std::string::npos;
         slash = slash > 0 ? folder.rfind('/', slash - 1) : std::string::npos) {
        const Index& index = indexOf(folder.substr(0, slash));
        if (!index) return Answer::unknown;
        const std::optional<GitIndex>& kept = *index;
        if (kept && kept->names(folder.substr(slash + 1))) return Answer::tracked;
    }
    return Answer::notTracked;
}

const GitRepositories::Index& GitRepositories::indexOf(const std::string& folder) {
    const auto seen = known.find(folder);
    return seen != known.end() ? seen->second : known.emplace(folder, read(folder)).first->second;
}

GitRepositories::Index GitRepositories::read(const std::string& folder) const {
    const std::string place = folder + "/.git";
    const auto status = source.lookUp(place);
    if (!status && isMissing(status.error())) return std::nullopt;
    if (!status) return std::unexpected(Unreadable{});
    std::optional<std::filesystem::path> repository;
    if (status->type == EntryType::folder) repository = place;
    if (status->type == EntryType::file) repository = repositoryOf(folder.empty() ? "/" : folder);
    if (!repository) return std::unexpected(Unreadable{});
    const auto bytes = contentOf(*repository, "index", GitIndex::longest);
    if (!bytes && bytes.error() == ENOENT) {
        // With commits and without an index, which Git makes again when it is asked to, they say what is kept.
        const bool mayHoldCommits = std::ranges::any_of(std::array{"logs", "packed-refs"}, [&](const char* name) {
            const auto sign = source.lookUp((*repository / name).native());
            return sign || !isMissing(sign.error());
        });
        if (!mayHoldCommits) return std::nullopt;
    }
    auto index = bytes ? GitIndex::parse(*bytes) : std::nullopt;
    if (!index) return std::unexpected(Unreadable{});
    return index;
}

}  // namespace vostrel
