#include "platform/Trash.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/SystemError.h"
#include "base/UnicodeText.h"
#include "platform/FileStatus.h"
#include "platform/FileSync.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"
#include "platform/TrashInfo.h"
#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashMove.h"

namespace vostrel {

namespace linux_platform {

namespace {

using Moved = std::expected<std::optional<std::filesystem::path>, std::string>;

/// Many things of one name are thrown away over the years; each is tried after all the others.
constexpr unsigned mostNames = 10'000;

constexpr std::string_view emptyIt = "Empty the Trash and try again.";

std::unexpected<std::string> refusalOf(int error) {
    switch (error) {
        case ENOSPC:
            return refusal("the disk is full", emptyIt);
        case EDQUOT:
            return refusal("your share of the disk is used up", emptyIt);
        case EMLINK:
            return refusal("the Trash holds as many folders as this disk allows", emptyIt);
        case EROFS:
            return refusal("this disk can only be read");
        case EACCES:
        case EPERM:
            return refusal("the permissions of the item, of its folder or of the Trash do not allow it");
        case EBUSY:
            return refusal("the system is using it");
        case EXDEV:
            return refusal("this disk would have to copy it");
        case EINVAL:
        case ENOSYS:
        case EOPNOTSUPP:
            return refusal("this disk cannot promise to replace nothing");
        default:
            return refusal(fmt::format("the system refused it ({})", std::generic_category().message(error)));
    }
}

/// As much of the text as goes into so many bytes, no character cut.
std::string_view beginning(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    std::size_t end = 0;
    for (const auto character : graphemes(text)) {
        if (end + character.size() > bytes) break;
        end += character.size();
    }
    return text.substr(0, end);
}

/// The item's own name, then "name.2.txt", "name.3.txt", as desktops number what has the same name; short enough that
/// its info file can be named after it.
std::string nameInTrash(std::string_view name, unsigned attempt) {
    constexpr std::size_t longestName = 255 - trashInfoSuffix.size();
    constexpr std::size_t longestExtension = 64;
    const std::string number = attempt == 1 ? "" : fmt::format(".{}", attempt);
    auto dot = std::min(name.find('.'), name.size());
    if (name.size() - dot > longestExtension) dot = name.size();
    const auto extension = name.substr(dot);
    const auto stem = beginning(name.substr(0, dot), longestName - number.size() - extension.size());
    return fmt::format("{}{}{}", stem, number, extension);
}

int writeWhole(int file, std::string_view text) {
    while (!text.empty()) {
        const auto count = ::write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count < 0 ? errno : EIO;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

/// A disk that knows no syncing keeps nothing from the Trash by that.
int syncWherePossible(int opened, const TrashCalls& calls) {
    const auto synced = calls.sync(opened);
    return synced || synced.error() == EINVAL ? 0 : synced.error();
}

/// The ".trashinfo" file of an item, which goes again unless the item came after it.
class InfoFile {
public:
    InfoFile(int openInfo, const std::string& itemName) : folder(openInfo), name(itemName) { name += trashInfoSuffix; }
    InfoFile(const InfoFile&) = delete;
    InfoFile& operator=(const InfoFile&) = delete;
    ~InfoFile() {
        if (wasMade && !isKept) ::unlinkat(folder, name.c_str(), 0);
    }

    /// On the disk when it returns 0, so that a loss of power leaves no item in the Trash that nobody can put back. The
    /// file systems that can lose power without harm keep the name of a new file together with its content.
    [[nodiscard]] int write(std::string_view text, const TrashCalls& calls) {
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        const OwnedDescriptor file(::openat(folder, name.c_str(), flags, S_IRUSR | S_IWUSR));
        if (!file.isOpen()) return errno;
        wasMade = true;
        if (const int error = writeWhole(file.get(), text); error != 0) return error;
        return syncWherePossible(file.get(), calls);
    }
    void keep() { isKept = true; }

private:
    int folder;
    std::string name;
    bool wasMade = false;
    bool isKept = false;
};

bool isTheItem(const FileStatus& status, const TrashItem& item) {
    return status.device == item.device && status.inode == item.inode;
}

/// One move of one item into a Trash that was found fit for it.
struct Move {
    const TrashItem& item;
    const TrashFolder& trash;
    const TrashCalls& calls;
    std::string name;
    std::string infoText;

    /// Tries one name after the other.
    [[nodiscard]] Moved run() const;
    /// Nothing when the name is taken.
    [[nodiscard]] std::optional<Moved> moveAs(const std::string& newName) const;
    /// What took the item's place was moved in its stead.
    [[nodiscard]] Moved putBack(const std::string& newName, InfoFile& info) const;
    [[nodiscard]] std::filesystem::path placeOf(const std::string& newName) const {
        return trash.path / "files" / newName;
    }
};

std::expected<FileStatus, std::string> confirmed(const TrashItem& item, const std::string& name) {
    auto status = statusOfEntry(item.openParent, name.c_str());
    if (!status && isMissing(status.error())) {
        return std::unexpected(std::string("It was gone before Vostrel could move it to the Trash."));
    }
    if (!status) return refusalOf(status.error());
    if (!isTheItem(*status, item)) return refusal("it was replaced meanwhile");
    if (status->isMountRoot) return refusal("something is mounted on it");
    return *status;
}

Moved Move::run() const {
    for (unsigned attempt = 1; attempt <= mostNames; ++attempt) {
        if (auto moved = moveAs(nameInTrash(name, attempt))) return *std::move(moved);
    }
    return refusal("the Trash holds too many items of its name", emptyIt);
}

std::optional<Moved> Move::moveAs(const std::string& newName) const {
    const auto taken = statusOfEntry(trash.files.get(), newName.c_str());
    if (taken) return std::nullopt;
    if (!isMissing(taken.error())) return refusalOf(taken.error());
    InfoFile info(trash.info.get(), newName);
    const int unwritten = info.write(infoText, calls);
    if (unwritten == EEXIST) return std::nullopt;
    if (unwritten != 0) return refusalOf(unwritten);

    if (const auto still = confirmed(item, name); !still) return std::unexpected(still.error());
    const int error = calls.rename(item.openParent, name.c_str(), trash.files.get(), newName.c_str());
    if (error == EEXIST) return std::nullopt;
    const auto arrived = statusOfEntry(trash.files.get(), newName.c_str());
    const bool isThere = arrived && isTheItem(*arrived, item);
    // What a network's disk reports as failed may have been done.
    if (error != 0 && (!isThere || confirmed(item, name))) return refusalOf(error);
    if (arrived && !isThere) return putBack(newName, info);
    info.keep();
    return placeOf(newName);
}

Moved Move::putBack(const std::string& newName, InfoFile& info) const {
    constexpr const char* taken = "Something else took its place while Vostrel was moving it to the Trash";
    const int error = calls.rename(trash.files.get(), newName.c_str(), item.openParent, name.c_str());
    if (error == 0)
        return std::unexpected(fmt::format("{}, so Vostrel put that back and left everything alone.", taken));
    info.keep();
    return std::unexpected(fmt::format("{} and could not be put back ({}). Restore it from the Trash: it is at {}.",
                                       taken, std::generic_category().message(error), placeOf(newName).native()));
}

/// Whether the path still leads to the open folder: where the item lay is written down by its path.
bool isInPlace(const TrashItem& item) {
    if (!item.path.is_absolute() || !item.path.has_filename() || item.path != item.path.lexically_normal())
        return false;
    const OwnedDescriptor found(openFolder(item.path.parent_path()));
    const auto named = statusOfOpen(found.get());
    const auto opened = statusOfOpen(item.openParent);
    return named && opened && named->device == opened->device && named->inode == opened->inode &&
           named->mount == opened->mount;
}

}  // namespace

TrashCalls TrashCalls::ofSystem() {
    return {syncFile, [](int from, const char* name, int to, const char* newName) {
                return ::renameat2(from, name, to, newName, RENAME_NOREPLACE) == 0 ? 0 : errno;
            }};
}

Moved moveToTrash(const TrashItem& item, const std::filesystem::path& home, Date now, const TrashCalls& calls) {
    if (!isInPlace(item)) return refusal("the folder that holds it was moved or replaced");
    const std::string name = item.path.filename();
    const auto status = confirmed(item, name);
    if (!status) return std::unexpected(status.error());
    if (status->mount == 0) return refusal("the system does not tell which disk it is on");
    const auto trash = openTrashFor(item, status->mount, home);
    if (!trash) return std::unexpected(trash.error());
    const auto place = trash->top.empty() ? item.path : item.path.lexically_relative(trash->top);
    return Move{item, *trash, calls, name, trashInfoText(place, now)}.run();
}

}  // namespace linux_platform

std::expected<std::optional<std::filesystem::path>, std::string> moveToTrash(const TrashItem& item,
                                                                             const std::filesystem::path& home,
                                                                             Date now) {
    return linux_platform::moveToTrash(item, home, now, linux_platform::TrashCalls::ofSystem());
}

}  // namespace vostrel
