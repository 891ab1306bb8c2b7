#include "support/FakeFolderTree.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vostrel::test {

FakeFolderTree::Node& FakeFolderTree::make(const std::string& path, EntryType type) {
    const auto known = nodes.find(path);
    if (known != nodes.end()) return known->second;
    if (const auto slash = path.rfind('/'); slash > 0)
        folder(path.substr(0, slash)).names.push_back(path.substr(slash + 1));
    Node& node = nodes[path];
    node.status.type = type;
    node.status.device = 1;
    node.status.mount = 1;
    node.status.inode = nextInode++;
    return node;
}

FakeFolderTree::Node& FakeFolderTree::folder(const std::string& path) {
    return make(path, EntryType::folder);
}

FakeFolderTree::Node& FakeFolderTree::file(const std::string& path, std::int64_t allocated) {
    Node& node = make(path, EntryType::file);
    node.status.allocated = allocated;
    return node;
}

FakeFolderTree::Node& FakeFolderTree::link(const std::string& path) {
    return make(path, EntryType::link);
}

void FakeFolderTree::hardLink(const std::string& path, const std::string& existing) {
    make(path, EntryType::file);
    const std::uint64_t inode = nodes.at(existing).status.inode;
    const auto count = nodes.at(existing).status.linkCount + 1;
    nodes.at(path).status = nodes.at(existing).status;
    for (auto& [_, node] : nodes) {
        if (node.status.inode == inode) node.status.linkCount = count;
    }
}

void FakeFolderTree::note(std::string line) {
    {
        const std::lock_guard guard(lock);
        lines.push_back(std::move(line));
    }
    changed.notify_all();
}

std::vector<std::string> FakeFolderTree::journal() const {
    const std::lock_guard guard(lock);
    return lines;
}

std::vector<std::string> FakeFolderTree::journalOf(std::string_view kind) const {
    std::vector<std::string> found;
    for (const auto& line : journal()) {
        if (line.starts_with(kind)) found.push_back(line.substr(kind.size() + 1));
    }
    return found;
}

void FakeFolderTree::clearJournal() {
    const std::lock_guard guard(lock);
    lines.clear();
    mostAtOnce = 0;
}

std::size_t FakeFolderTree::openNow() const {
    const std::lock_guard guard(lock);
    return open_.size();
}

std::size_t FakeFolderTree::mostOpen() const {
    const std::lock_guard guard(lock);
    return mostAtOnce;
}

void FakeFolderTree::awaitLine(std::string_view line) const {
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return std::ranges::find(lines, line) != lines.end(); });
}

void FakeFolderTree::awaitHanging() const {
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return hanging > 0; });
}

void FakeFolderTree::letGo() {
    {
        const std::lock_guard guard(lock);
        mayGoOn = true;
    }
    changed.notify_all();
}

void FakeFolderTree::hang() {
    std::unique_lock guard(lock);
    ++hanging;
    changed.notify_all();
    changed.wait(guard, [&] { return mayGoOn; });
    --hanging;
}

std::expected<FileStatus, int> FakeFolderTree::lookUp(const std::string& path) {
    const auto other = aliases.find(path);
    const auto found = nodes.find(other == aliases.end() ? path : other->second);
    if (found != nodes.end()) {
        if (found->second.lookUpError != 0) return std::unexpected(found->second.lookUpError);
        return found->second.status;
    }
    const auto above = nodes.find(path.substr(0, path.rfind('/')));
    const bool isBelowAFile = above != nodes.end() && above->second.status.type != EntryType::folder;
    return std::unexpected(isBelowAFile ? ENOTDIR : ENOENT);
}

std::expected<std::string, int> FakeFolderTree::resolve(const std::string& path) {
    const auto other = aliases.find(path);
    return other == aliases.end() ? path : other->second;
}

int FakeFolderTree::open(const std::string& path) {
    note("open " + path);
    const auto found = nodes.find(path);
    if (found != nodes.end() && found->second.hangsInOpen) hang();
    const int error = found == nodes.end() ? ENOENT : found->second.openError;
    if (error != 0) {
        errno = error;
        return -1;
    }
    const std::lock_guard guard(lock);
    open_[nextDescriptor] = {path, &found->second, 0};
    mostAtOnce = std::max(mostAtOnce, open_.size());
    return nextDescriptor++;
}

FakeFolderTree::Open& FakeFolderTree::openFolder(int descriptor) {
    const std::lock_guard guard(lock);
    return open_.at(descriptor);
}

std::expected<FileStatus, int> FakeFolderTree::status(int folder) {
    const Open& opened = openFolder(folder);
    note("status " + opened.path);
    if (opened.node->statusError != 0) return std::unexpected(opened.node->statusError);
    return opened.node->status;
}

std::expected<FolderListing::Step, int> FakeFolderTree::readSome(int folder, FolderListing&, EntrySink& sink) {
    Open& opened = openFolder(folder);
    note("read " + opened.path);
    if (opened.node->hangsInListing && opened.next == 0) hang();
    const auto& names = opened.node->names;
    const auto& failure = opened.node->listingFailure;
    const std::size_t last = failure ? std::min(failure->afterEntries, names.size()) : names.size();
    if (opened.next == last) {
        if (failure) return std::unexpected(failure->error);
        return FolderListing::Step::end;
    }
    const std::size_t end = std::min(last, opened.next + entriesPerRead);
    for (; opened.next < end; ++opened.next) {
        const Node& node = nodes.at(opened.path + "/" + names[opened.next]);
        FolderEntry entry;
        entry.name = names[opened.next];
        entry.error = node.entryError;
        if (node.entryError == 0) {
            entry.type = node.status.type;
            entry.fileID = node.status.inode;
            entry.linkCount = node.status.linkCount;
            entry.allocated = node.status.allocated;
            entry.mountStatus = node.mountStatus;
            entry.device = node.status.device;
            entry.modified = node.status.modified;
            entry.changed = node.status.changed;
            entry.accessed = node.status.accessed;
            entry.added = node.status.added;
            entry.isDataless = node.status.isDataless;
        }
        sink.entry(entry);
    }
    return FolderListing::Step::more;
}

void FakeFolderTree::close(int folder) {
    note("close " + openFolder(folder).path);
    const std::lock_guard guard(lock);
    open_.erase(folder);
}

namespace {

class Dice {
public:
    explicit Dice(std::mt19937& source) : random(source) {}

    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); }
    bool oneIn(std::size_t chances) { return below(chances) == 0; }
    int error() {
        constexpr int errors[] = {EACCES, EPERM, EIO, ENOENT, ENOTDIR, EDEADLK};
        return errors[below(std::size(errors))];
    }

private:
    std::mt19937& random;
};

void spoil(FakeFolderTree::Node& folder, Dice& dice) {
    switch (dice.below(7)) {
        case 0:
            folder.openError = dice.error();
            break;
        case 1:
            folder.statusError = dice.error();
            break;
        case 2:
            folder.listingFailure = {{dice.error(), dice.below(6)}};
            break;
        case 3:
            folder.entryError = dice.error();
            break;
        case 4:
            folder.mountStatus = entryIsMountPoint;
            break;
        case 5:
            folder.status.device = 2;
            break;
        default:
            folder.status.mount = 2;
    }
}

}  // namespace

void plantRandomTree(FakeFolderTree& tree, std::mt19937& random, int folders) {
    Dice dice(random);
    std::vector<std::string> paths{"/r"};
    std::vector<std::string> files;
    tree.folder("/r");
    tree.entriesPerRead = 1 + dice.below(5);
    for (int made = 0; made < folders; ++made) {
        const std::size_t recent = std::min<std::size_t>(paths.size(), 8);
        const auto& parent =
            dice.oneIn(2) ? paths[paths.size() - 1 - dice.below(recent)] : paths[dice.below(paths.size())];
        paths.push_back(parent + "/d" + std::to_string(made));
        auto& folder = tree.folder(paths.back());
        if (dice.oneIn(15)) spoil(folder, dice);
        for (std::size_t left = dice.below(5); left > 0; --left) {
            const std::string path = paths.back() + "/f" + std::to_string(left);
            if (dice.oneIn(12)) {
                tree.link(path);
            } else if (!files.empty() && dice.oneIn(6)) {
                tree.hardLink(path, files[dice.below(files.size())]);
            } else {
                tree.file(path, static_cast<std::int64_t>(dice.below(64)) * 512);
                files.push_back(path);
            }
            if (dice.oneIn(40)) tree.at(path).entryError = dice.error();
        }
    }
}

}  // namespace vostrel::test
