#include "platform/TrashInfo.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "base/Calendar.h"
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

std::string wallText(Date date) {
    const WallTime time = Calendar().wallTime(date);
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss clock(time - midnight);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count());
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
std::optional<Date> localDate(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00";
    const bool hasForm = std::ranges::equal(text, form, [](char letter, char wanted) {
        return wanted == '0' ? letter >= '0' && letter <= '9' : letter == wanted;
    });
    if (!hasForm) return std::nullopt;
    const auto part = [&](std::size_t place) { return number(text.substr(place, 2)); };
    const std::chrono::year_month_day day{std::chrono::year(number(text.substr(0, 4))),
                                          std::chrono::month(static_cast<unsigned>(part(5))),
                                          std::chrono::day(static_cast<unsigned>(part(8)))};
    const bool isTime = part(11) < 24 && part(14) < 60 && part(17) < 60;
    if (!day.ok() || day.year() < std::chrono::year(1970) || !isTime) return std::nullopt;
    return Calendar().latest(std::chrono::local_days(day) + std::chrono::hours(part(11)) +
                             std::chrono::minutes(part(14)) + std::chrono::seconds(part(17)));
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
    return fmt::format("{}\nPath={}\n{}{}\n", heading, percentEncoded(place.native()), dateKey, wallText(deleted));
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
