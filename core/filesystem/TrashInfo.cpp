#include "filesystem/TrashInfo.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <string>
#include <string_view>

#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/UserAccount.h"

namespace vostrel {

namespace {

/// The longest path, every byte of it written as "%41", and the rest of the file many times over.
constexpr std::int64_t longestFile = 65'536;

bool isTrusted(int openFolder) {
    constexpr unsigned writableByOthers = 022;
    const auto status = statusOfOpen(openFolder);
    return status && status->owner == effectiveUserID() && (status->mode & writableByOthers) == 0;
}

std::optional<std::string> contentOf(int openFolder, const std::string& name) {
    const OwnedDescriptor file(
        ::openat(openFolder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) return std::nullopt;
    const auto status = statusOfOpen(file.get());
    if (!status || status->type != EntryType::file || status->length > longestFile) return std::nullopt;
    std::string content;
    std::array<char, 4096> piece{};
    while (content.size() <= longestFile) {
        const auto count = ::read(file.get(), piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return content;
        content.append(piece.data(), static_cast<std::size_t>(count));
    }
    return std::nullopt;
}

std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
        line.remove_suffix(1);
    return line;
}

/// "2025-03-03T09:05:07" in local time.
std::optional<Date> localDate(const std::string& text) {
    std::tm parts{};
    const char* end = ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    if (end == nullptr || *end != '\0') return std::nullopt;
    std::optional<Date> latest;
    for (const int isSummer : {-1, 0, 1}) {
        std::tm tried = parts;
        tried.tm_isdst = isSummer;
        const std::time_t seconds = std::mktime(&tried);
        if (seconds == -1) continue;
        const bool isThatTime = isSummer == -1 || (tried.tm_hour == parts.tm_hour && tried.tm_min == parts.tm_min);
        const Date date = Date::fromSeconds(seconds);
        if (isThatTime && (!latest || date > *latest)) latest = date;
    }
    return latest;
}

std::optional<Date> dateIn(std::string_view content) {
    constexpr std::string_view key = "DeletionDate=";
    if (takeLine(content) != "[Trash Info]") return std::nullopt;
    while (!content.empty()) {
        const std::string_view line = takeLine(content);
        if (line.starts_with('[')) return std::nullopt;
        if (line.starts_with(key)) return localDate(std::string(line.substr(key.size())));
    }
    return std::nullopt;
}

}  // namespace

std::optional<Date> deletionDate(const std::filesystem::path& item) {
    const OwnedDescriptor folder(openFolder(item.parent_path().parent_path() / "info"));
    if (!folder.isOpen() || !isTrusted(folder.get())) return std::nullopt;
    const auto content = contentOf(folder.get(), item.filename().native() + ".trashinfo");
    return content ? dateIn(*content) : std::nullopt;
}

}  // namespace vostrel
