#include "platform/TreeRemoval.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <tuple>
#include <utility>
#include <vector>

#include "base/SystemError.h"
#include "platform/FolderListing.h"
#include "platform/FolderOpening.h"
#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

using Answer = TreeRemovalObserver::Answer;

// More levels than this are deep; the folders above are closed then, and opened again through "..".
constexpr std::size_t mostOpenLevels = 32;

bool isSameFolder(const std::expected<FileStatus, int>& now, const FileStatus& before) {
    return now && now->type == before.type && now->device == before.device && now->inode == before.inode &&
           now->mount == before.mount;
}

/// A folder on the way down, being emptied.
class Level final : public EntrySink {
public:
    Level(OwnedDescriptor&& opened, const FileStatus& as, std::size_t lengthOfPath)
        : folder(std::move(opened)), status(as), pathLength(lengthOfPath) {}

    void entry(const FolderEntry& entry) override {
        names.push_back({text.size(), entry.type});
        text.append(entry.name).push_back('\0');
    }

    struct Name {
        std::size_t start = 0;
        EntryType type = EntryType::none;
    };

    OwnedDescriptor folder;
    FileStatus status;
    /// Of its own path, within the path of what is inside.
    std::size_t pathLength;
    bool isListed = false;
    bool wasListedAgain = false;
    /// Something in it stays.
    bool keepsSomething = false;
    /// Listed and not yet looked at.
    std::vector<Name> names;
    std::size_t next = 0;
    std::string text;
};

class TreeRemover {
public:
    TreeRemover(int openFolder, TreeRemovalObserver& decider) : base(openFolder), observer(decider) {}

    void run(const std::string& name) {
        visit(name.c_str(), EntryType::none);
        while (!levels.empty() && !isStopped) {
            Level& level = levels.back();
            if (level.next < level.names.size()) {
                const Level::Name next = level.names[level.next++];
                visit(level.text.c_str() + next.start, next.type);
            } else if (level.isListed) {
                leave();
            } else {
                listSome(level);
            }
        }
    }

private:
    [[nodiscard]] int containing() const { return levels.empty() ? base : levels.back().folder.get(); }

    void visit(const char* name, EntryType type);
    void remove(const RemovalEntry& entry, const char* name);
    void enter(OwnedDescriptor&& folder, const FileStatus& status);
    void listSome(Level& level);
    void leave();
    [[nodiscard]] bool returnsTo(Level& around, const Level& emptied);
    [[nodiscard]] bool listsAgain(Level& emptied, int error);
    void stays() {
        if (!levels.empty()) levels.back().keepsSomething = true;
    }
    void fail(int error);
    [[nodiscard]] OwnedDescriptor open(const char* name);
    [[nodiscard]] OwnedDescriptor withRoom(const std::function<int()>& opening);
    [[nodiscard]] bool closeOneAbove();
    [[nodiscard]] bool isFolderInPlace();

    int base;
    TreeRemovalObserver& observer;
    FolderListing listing{ListingDetail::names};
    std::vector<Level> levels;
    /// The levels before it are closed.
    std::size_t firstOpen = 0;
    /// Of the entry that is looked at, from the top's name on.
    std::string path;
    bool isStopped = false;
};

/// Looks at an entry of the innermost folder and removes it, or enters it.
void TreeRemover::visit(const char* name, EntryType type) {
    const bool isTop = levels.empty();
    path.resize(isTop ? 0 : levels.back().pathLength);
    if (!isTop) path += '/';
    path += name;

    OwnedDescriptor folder;
    int openError = EAGAIN;  // of one that was no folder a moment ago
    if (type == EntryType::folder || isTop) {
        folder = open(name);
        openError = errno;
    }
    const RemovalEntry entry{path, isTop,
                             folder.isOpen() ? statusOfOpen(folder.get()) : statusOfEntry(containing(), name),
                             isFolderInPlace()};
    if (!isTop && !entry.status && isMissing(entry.status.error())) return;
    switch (observer.confirm(entry)) {
        case Answer::stop:
            isStopped = true;
            return;
        case Answer::skip:
            return stays();
        case Answer::proceed:
            break;
    }
    if (!entry.status) return fail(entry.status.error());
    if (folder.isOpen()) return enter(std::move(folder), *entry.status);
    if (entry.status->type != EntryType::folder) return remove(entry, name);
    // One that may not be read may still be empty, and one that something is mounted on says so.
    if (unlinkat(containing(), name, AT_REMOVEDIR) != 0) return fail(openError == EXDEV ? errno : openError);
    observer.removed(entry, std::nullopt);
}

OwnedDescriptor TreeRemover::open(const char* name) {
    if (levels.size() - firstOpen >= mostOpenLevels) std::ignore = closeOneAbove();
    return withRoom([&] { return openSubfolder(containing(), name); });
}

/// Opens something, closing folders further up for as long as the system has no room for more descriptors.
OwnedDescriptor TreeRemover::withRoom(const std::function<int()>& opening) {
    while (true) {
        OwnedDescriptor opened(opening());
        const bool wantsRoom = !opened.isOpen() && (errno == EMFILE || errno == ENFILE);
        if (!wantsRoom || !closeOneAbove()) return opened;
    }
}

/// Closes the outermost open level; what is left to list of it is listed first. Never the innermost.
bool TreeRemover::closeOneAbove() {
    const int error = errno;
    if (firstOpen + 1 >= levels.size()) return false;
    Level& level = levels[firstOpen];
    while (!level.isListed)
        listSome(level);
    level.folder.reset();
    ++firstOpen;
    errno = error;
    return true;
}

/// Whether the innermost folder is still found from the folder in which the removal began; where the path to it is too
/// long for one call, from the outermost folder that is open.
bool TreeRemover::isFolderInPlace() {
    if (levels.empty()) return true;
    const Level& around = levels.back();
    const char separator = std::exchange(path[around.pathLength], '\0');
    OwnedDescriptor found = withRoom([&] { return locateBelow(base, path.c_str()); });
    if (!found.isOpen() && errno == ENAMETOOLONG) {
        found = withRoom([&] {
            const Level& above = levels[firstOpen];
            return &above == &around ? ::dup(around.folder.get())
                                     : locateBelow(above.folder.get(), path.c_str() + above.pathLength + 1);
        });
    }
    path[around.pathLength] = separator;
    return found.isOpen() && isSameFolder(statusOfOpen(found.get()), around.status);
}

void TreeRemover::remove(const RemovalEntry& entry, const char* name) {
    OwnedDescriptor held;
    if (entry.status->linkCount > 1)
        held = withRoom([&] { return openat(containing(), name, O_PATH | O_NOFOLLOW | O_CLOEXEC); });
    if (unlinkat(containing(), name, 0) != 0) {
        if (!entry.isTop && errno == ENOENT) return;
        return fail(errno);
    }
    std::optional<Date> changedByIt;
    if (held.isOpen()) {
        const auto left = statusOfOpen(held.get());
        if (left && left->inode == entry.status->inode && left->device == entry.status->device)
            changedByIt = left->changed;
    }
    observer.removed(entry, changedByIt);
}

void TreeRemover::enter(OwnedDescriptor&& folder, const FileStatus& status) {
    levels.emplace_back(std::move(folder), status, path.size());
}

void TreeRemover::listSome(Level& level) {
    level.names.erase(level.names.begin(), level.names.begin() + static_cast<std::ptrdiff_t>(level.next));
    level.next = 0;
    if (level.names.empty()) level.text.clear();
    const auto step = listing.readSome(level.folder.get(), level);
    level.isListed = !step || *step == FolderListing::Step::end;
    if (step) return;
    level.keepsSomething = true;
    const auto listed = std::string_view(path).substr(0, level.pathLength);
    if (observer.failed(listed, step.error()) == Answer::stop) isStopped = true;
}

/// Goes back up from a folder with nothing left to look at, and removes it unless something in it stays.
void TreeRemover::leave() {
    Level emptied = std::move(levels.back());
    levels.pop_back();
    path.resize(emptied.pathLength);
    const bool isTop = levels.empty();
    const bool isBack = isTop || returnsTo(levels.back(), emptied);
    if (isBack && emptied.keepsSomething) return stays();
    const std::string name = path.substr(isTop ? 0 : levels.back().pathLength + 1);
    const RemovalEntry entry{path, isTop, isBack ? statusOfEntry(containing(), name.c_str()) : std::unexpected(ESTALE),
                             isBack && isFolderInPlace()};
    const Answer answer = observer.confirmEmptied(entry, emptied.status);
    if (answer == Answer::stop || !isBack) {
        isStopped = true;
    } else if (answer == Answer::skip) {
        stays();
    } else if (unlinkat(containing(), name.c_str(), AT_REMOVEDIR) == 0) {
        observer.removed(entry, std::nullopt);
    } else if (!listsAgain(emptied, errno)) {
        fail(errno);
    }
}

/// Opens the folder around an emptied one again if it was closed; whether the removal is back in it.
bool TreeRemover::returnsTo(Level& around, const Level& emptied) {
    if (around.folder.isOpen()) return true;
    around.folder = withRoom([&] { return openParentFolder(emptied.folder.get()); });
    firstOpen = levels.size() - 1;
    return around.folder.isOpen() && isSameFolder(statusOfOpen(around.folder.get()), around.status);
}

/// A file system may leave entries out of a listing from which others are removed meanwhile: looks once more.
bool TreeRemover::listsAgain(Level& emptied, int error) {
    const bool mayHoldMore = (error == ENOTEMPTY || error == EEXIST) && !emptied.wasListedAgain;
    if (!mayHoldMore || lseek(emptied.folder.get(), 0, SEEK_SET) != 0) {
        errno = error;
        return false;
    }
    emptied.isListed = false;
    emptied.wasListedAgain = true;
    levels.push_back(std::move(emptied));
    return true;
}

void TreeRemover::fail(int error) {
    stays();
    if (observer.failed(path, error) == Answer::stop) isStopped = true;
}

}  // namespace

void removeTree(int openFolder, const std::string& name, TreeRemovalObserver& observer) {
    TreeRemover(openFolder, observer).run(name);
}

}  // namespace vostrel
