#include "support/FakeFolderTree.h"

#include <algorithm>
#include <cerrno>

namespace vostrel::test {

using Node = FakeFolderTree::Node;

Node& FakeFolderTree::make(const std::string& path, EntryType type) {
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

Node& FakeFolderTree::file(const std::string& path, std::int64_t allocated) {
    Node& node = make(path, EntryType::file);
    node.status.allocated = allocated;
    return node;
}

void FakeFolderTree::hardLink(const std::string& path, const std::string& existing) {
    FileStatus status = nodes.at(existing).status;
    ++status.linkCount;
    file(path).status = status;
    for (auto& [_, node] : nodes) {
        if (node.status.inode == status.inode) node.status = status;
    }
}

void FakeFolderTree::note(const std::string& line) {
    onLine(line);
    const std::lock_guard guard(lock);
    lines.push_back(line);
}

std::vector<std::string> FakeFolderTree::journal() const {
    const std::lock_guard guard(lock);
    return lines;
}

void FakeFolderTree::clearJournal() {
    lines.clear();
    mostAtOnce = 0;
}

std::size_t FakeFolderTree::openNow() const {
    const std::lock_guard guard(lock);
    return open_.size();
}

std::expected<FileStatus, int> FakeFolderTree::lookUp(const std::string& path) {
    const auto found = nodes.find(*resolve(path));
    if (found == nodes.end()) return std::unexpected(ENOENT);
    if (found->second.lookUpError != 0) return std::unexpected(found->second.lookUpError);
    return found->second.status;
}

std::expected<std::string, int> FakeFolderTree::resolve(const std::string& path) {
    const auto other = aliases.find(path);
    return other == aliases.end() ? path : other->second;
}

int FakeFolderTree::open(const std::string& path) {
    note("open " + path);
    const Node& node = nodes.at(path);
    if (node.openError != 0) {
        errno = node.openError;
        return -1;
    }
    const std::lock_guard guard(lock);
    open_[nextDescriptor] = {path, &node, 0};
    mostAtOnce = std::max(mostAtOnce, open_.size());
    return nextDescriptor++;
}

FakeFolderTree::Open& FakeFolderTree::opened(int descriptor) {
    const std::lock_guard guard(lock);
    return open_.at(descriptor);
}

std::expected<FileStatus, int> FakeFolderTree::status(int folder) {
    const auto& [path, node, _] = opened(folder);
    note("status " + path);
    if (node->statusError != 0) return std::unexpected(node->statusError);
    return node->status;
}

std::expected<FolderListing::Step, int> FakeFolderTree::readSome(int folder, FolderListing&, EntrySink& sink) {
    auto& [path, node, next] = opened(folder);
    note("read " + path);
    const auto& names = node->names;
    const bool fails = node->listingError != 0;
    const std::size_t last = fails ? std::min(node->entriesBeforeError, names.size()) : names.size();
    if (next == last && fails) return std::unexpected(node->listingError);
    if (next == last) return FolderListing::Step::end;
    for (const std::size_t end = std::min(last, next + entriesPerRead); next < end; ++next) {
        const Node& child = nodes.at(path + "/" + names[next]);
        FolderEntry entry;
        entry.name = names[next];
        entry.error = child.entryError;
        if (child.entryError == 0) {
            entry.type = child.status.type;
            entry.fileID = child.status.inode;
            entry.linkCount = child.status.linkCount;
            entry.allocated = child.status.allocated;
            entry.mountStatus = child.mountStatus;
            entry.device = child.status.device;
        }
        sink.entry(entry);
    }
    return FolderListing::Step::more;
}

void FakeFolderTree::close(int folder) {
    note("close " + opened(folder).path);
    const std::lock_guard guard(lock);
    open_.erase(folder);
}

namespace {

class Dice {
public:
    explicit Dice(std::mt19937& source) : random(source) {}

    std::size_t below(std::size_t end) { return random() % end; }
    bool oneIn(std::size_t chances) { return below(chances) == 0; }
    template <class Value, std::size_t count>
    Value oneOf(const Value (&values)[count]) {
        return values[below(count)];
    }
    int error() { return oneOf({EACCES, EPERM, EIO, ENOENT, ENOTDIR, EDEADLK}); }

private:
    std::mt19937& random;
};

void spoil(Node& folder, Dice& dice) {
    const std::size_t fault = dice.below(7);
    folder.entriesBeforeError = dice.below(6);
    if (fault < 3) folder.*dice.oneOf({&Node::openError, &Node::statusError, &Node::entryError}) = dice.error();
    if (fault == 3) folder.listingError = dice.error();
    if (fault == 4) folder.mountStatus = dice.oneOf({entryIsMountPoint, entryTriggersMount});
    if (fault == 5) folder.status.device = 2;
    if (fault == 6) folder.status.mount = 2;
}

}  // namespace

void plantRandomTree(FakeFolderTree& tree, std::mt19937& random, int folders) {
    Dice dice(random);
    std::vector<std::string> paths{"/r"};
    std::vector<std::string> files;
    if (dice.oneIn(8)) spoil(tree.folder("/r"), dice);
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
                tree.link(path).status.allocated = 512;
            } else if (!files.empty() && dice.oneIn(6)) {
                tree.hardLink(path, files[dice.below(files.size())]);
            } else {
                tree.file(path, static_cast<std::int64_t>(dice.below(64)) * 512);
                files.push_back(path);
            }
            if (dice.oneIn(40)) tree.at(path).entryError = dice.error();
            using enum EntryType;
            if (dice.oneIn(40)) tree.file(path).status.type = dice.oneOf({socket, fifo, blockDevice, none});
        }
    }
}

}  // namespace vostrel::test
