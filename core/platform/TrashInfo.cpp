#include "platform/TrashInfo.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>

#include "platform/FileContent.h"
#include "platform/FileStatus.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/UserAccount.h"

namespace vostrel {

namespace {

constexpr std::string_view heading = "[Trash Info]";
constexpr std::string_view dateKey = "DeletionDate=";

/// Bytes that mean themselves; every other is written as "%0A".
bool isPlain(char letter) {
    const bool isLetter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
    return isLetter || (letter >= '0' && letter <= '9') || std::string_view("/-._~").contains(letter);
}

std::string percentEncoded(std::string_view path) {
    std::string encoded;
    for (const char letter : path) {
        if (isPlain(letter)) {
            encoded += letter;
        } else {
            encoded += fmt::format("%{:02X}", static_cast<unsigned char>(letter));
        }
    }
    return encoded;
}

std::string localTime(Date date) {
    const std::time_t seconds = date.seconds();
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                       parts.tm_hour, parts.tm_min, parts.tm_sec);
}

/// The longest path, every byte of it written as "%41", and the rest of the file many times over.
constexpr std::size_t longestFile = 65'536;

bool isOnlyTheUsers(const FileStatus& status) {
    constexpr unsigned writableByOthers = 022;
    return status.owner == effectiveUserID() && (status.mode & writableByOthers) == 0;
}

bool isTrusted(int openFolder) {
    const auto status = statusOfOpen(openFolder);
    return status && isOnlyTheUsers(*status);
}

std::optional<std::string> contentOf(int openFolder, const std::string& name) {
    const OwnedDescriptor file(
        ::openat(openFolder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) return std::nullopt;
    const auto status = statusOfOpen(file.get());
    if (!status || status->type != EntryType::file || std::cmp_greater(status->length, longestFile))
        return std::nullopt;
    if (!isOnlyTheUsers(*status)) return std::nullopt;
    auto content = readBytes(file.get(), longestFile + 1);
    return content && content->size() <= longestFile ? std::optional(std::move(*content)) : std::nullopt;
}

std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// The number that the digits stand for, of which nothing but digits is read.
int number(std::string_view digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

/// "2025-03-03T09:05:07" and nothing else: a day that there was, since 1970.
std::optional<std::tm> calendarTime(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00";
    const bool hasForm = std::ranges::equal(text, form, [](char letter, char wanted) {
        return wanted == '0' ? letter >= '0' && letter <= '9' : letter == wanted;
    });
    if (!hasForm) return std::nullopt;
    std::tm parts{};
    parts.tm_year = number(text.substr(0, 4)) - 1900;
    parts.tm_mon = number(text.substr(5, 2)) - 1;
    parts.tm_mday = number(text.substr(8, 2));
    parts.tm_hour = number(text.substr(11, 2));
    parts.tm_min = number(text.substr(14, 2));
    parts.tm_sec = number(text.substr(17, 2));
    const std::chrono::year_month_day day{std::chrono::year(parts.tm_year + 1900),
                                          std::chrono::month(static_cast<unsigned>(parts.tm_mon + 1)),
                                          std::chrono::day(static_cast<unsigned>(parts.tm_mday))};
    const bool isTime = parts.tm_hour < 24 && parts.tm_min < 60 && parts.tm_sec < 60;
    if (!day.ok() || parts.tm_year < 70 || !isTime) return std::nullopt;
    return parts;
}

std::optional<Date> localDate(std::string_view text) {
    const auto parts = calendarTime(text);
    if (!parts) return std::nullopt;
    std::optional<Date> latest;
    for (const int isSummer : {-1, 0, 1}) {
        std::tm tried = *parts;
        tried.tm_isdst = isSummer;
        const std::time_t seconds = std::mktime(&tried);
        if (seconds == -1 || tried.tm_mday != parts->tm_mday) continue;
        const bool isThatTime = isSummer == -1 || (tried.tm_hour == parts->tm_hour && tried.tm_min == parts->tm_min);
        const Date date = Date::fromSeconds(seconds);
        if (isThatTime && (!latest || date > *latest)) latest = date;
    }
    return latest;
}

std::optional<Date> dateIn(std::string_view content) {
    if (takeLine(content) != heading) return std::nullopt;
    while (!content.empty()) {
        const std::string_view line = takeLine(content);
        if (line.starts_with('[')) return std::nullopt;
        if (line.starts_with(dateKey)) return localDate(line.substr(dateKey.size()));
    }
    return std::nullopt;
}

}  // namespace

std::string trashInfoText(const std::filesystem::path& place, Date deleted) {
    return fmt::format("{}\nPath={}\n{}{}\n", heading, percentEncoded(place.native()), dateKey, localTime(deleted));
}

std::optional<Date> deletionDate(const std::filesystem::path& item) {
    const OwnedDescriptor folder(openFolder(item.parent_path().parent_path() / "info"));
    if (!folder.isOpen() || !isTrusted(folder.get())) return std::nullopt;
    const auto content = contentOf(folder.get(), fmt::format("{}{}", item.filename().native(), trashInfoSuffix));
    return content ? dateIn(*content) : std::nullopt;
}

void removeTrashInfo(const std::filesystem::path& item) {
    const OwnedDescriptor folder(openFolder(item.parent_path().parent_path() / "info"));
    if (!folder.isOpen() || !isTrusted(folder.get())) return;
    const auto left = statusOfPath(item);
    const std::string name = item.filename().native() + std::string(trashInfoSuffix);
    if (!left && left.error() == ENOENT) ::unlinkat(folder.get(), name.c_str(), 0);
}

}  // namespace vostrel
