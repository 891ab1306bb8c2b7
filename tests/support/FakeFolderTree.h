#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "filesystem/FolderSource.h"

namespace vostrel::test {

/// A made-up tree in the file system's place, for what a file system will not do on request: links, devices and mounts
/// at will, folders that fail, vanish or hang, entries that cannot be examined. It keeps a journal of what was done.
///
/// Build it first and walk it then: while a walk runs, any thread may call it and nothing of the tree may change.
class FakeFolderTree final : public FolderSource {
public:
    /// One file, link or folder. Numbers are given out as it is made; everything else is as plain as can be.
    struct Node {
        FileStatus status;
        std::uint32_t mountStatus = 0;
        /// The folder that holds it cannot examine it.
        int entryError = 0;
        int lookUpError = 0;

        // Of folders. One that has vanished since it was listed fails to open with ENOENT.
        int openError = 0;
        int statusError = 0;
        int listingError = 0;
        std::size_t entriesBeforeError = 0;
        std::vector<std::string> names;
    };

    /// Makes what is not there yet, and the folders above it. References stay valid.
    Node& folder(const std::string& path) { return make(path, EntryType::folder); }
    Node& link(const std::string& path) { return make(path, EntryType::link); }
    Node& file(const std::string& path, std::int64_t allocated = 4096) {
        Node& node = make(path, EntryType::file);
        node.status.allocated = allocated;
        return node;
    }
    /// A further name of the file at `existing`, whose link count grows.
    void hardLink(const std::string& path, const std::string& existing) {
        FileStatus status = nodes.at(existing).status;
        ++status.linkCount;
        file(path).status = status;
        for (auto& [_, node] : nodes) {
            if (node.status.inode == status.inode) node.status = status;
        }
    }
    /// Another path of the same folder, through a link further up.
    void alias(const std::string& path, const std::string& existing) { aliases[path] = existing; }
    [[nodiscard]] Node& at(const std::string& path) { return nodes.at(path); }
    [[nodiscard]] const std::map<std::string, Node>& all() const { return nodes; }

    /// How many entries one read reports at most.
    std::size_t entriesPerRead = 3;
    /// Called with each line of the journal, on the thread that does what it says, and may keep it waiting.
    std::function<void(const std::string& line)> onLine = [](const std::string&) {};

    /// Adds a line of the test's own to the journal: a decision, a look at the budget.
    void note(const std::string& line) {
        onLine(line);
        const std::lock_guard guard(lock);
        lines.push_back(line);
    }
    /// "open /a", "status /a", "read /a", "close /a", and the notes, in the order in which they came.
    [[nodiscard]] const std::vector<std::string>& journal() const { return lines; }
    void clearJournal() {
        lines.clear();
        mostAtOnce = 0;
    }
    [[nodiscard]] std::size_t openNow() const { return opened.size(); }
    [[nodiscard]] std::size_t mostOpen() const { return mostAtOnce; }

    std::expected<FileStatus, int> lookUp(const std::string& path) override {
        const auto found = nodes.find(*resolve(path));
        if (found == nodes.end()) return std::unexpected(ENOENT);
        if (found->second.lookUpError != 0) return std::unexpected(found->second.lookUpError);
        return found->second.status;
    }
    std::expected<std::string, int> resolve(const std::string& path) override {
        const auto other = aliases.find(path);
        return other == aliases.end() ? path : other->second;
    }
    int open(const std::string& path) override {
        note("open " + path);
        const Node& node = nodes.at(path);
        errno = node.openError;
        if (node.openError != 0) return -1;
        const std::lock_guard guard(lock);
        opened[nextDescriptor] = {path, &node, 0};
        mostAtOnce = std::max(mostAtOnce, opened.size());
        return nextDescriptor++;
    }
    std::expected<FileStatus, int> status(int folder) override {
        const auto& [path, node, _] = at(folder);
        note("status " + path);
        if (node->statusError != 0) return std::unexpected(node->statusError);
        return node->status;
    }
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing&, EntrySink& sink) override {
        auto& [path, node, next] = at(folder);
        note("read " + path);
        const auto& names = node->names;
        const bool fails = node->listingError != 0;
        const std::size_t last = fails ? std::min(node->entriesBeforeError, names.size()) : names.size();
        if (next == last && fails) return std::unexpected(node->listingError);
        if (next == last) return FolderListing::Step::end;
        for (const std::size_t end = std::min(last, next + entriesPerRead); next < end; ++next)
            report(names[next], nodes.at(path + "/" + names[next]), sink);
        return FolderListing::Step::more;
    }
    void close(int folder) override {
        note("close " + at(folder).path);
        const std::lock_guard guard(lock);
        opened.erase(folder);
    }

private:
    struct Open {
        std::string path;
        const Node* node = nullptr;
        std::size_t next = 0;
    };

    Node& make(const std::string& path, EntryType type) {
        const auto [place, isNew] = nodes.try_emplace(path);
        Node& node = place->second;
        if (!isNew) return node;
        if (const auto slash = path.rfind('/'); slash > 0)
            folder(path.substr(0, slash)).names.push_back(path.substr(slash + 1));
        node.status.type = type;
        node.status.device = 1;
        node.status.mount = 1;
        node.status.inode = nextInode++;
        return node;
    }
    Open& at(int descriptor) {
        const std::lock_guard guard(lock);
        return opened.at(descriptor);
    }
    static void report(const std::string& name, const Node& node, EntrySink& sink) {
        FolderEntry entry;
        entry.name = name;
        entry.error = node.entryError;
        if (node.entryError == 0) {
            entry.type = node.status.type;
            entry.fileID = node.status.inode;
            entry.linkCount = node.status.linkCount;
            entry.allocated = node.status.allocated;
            entry.mountStatus = node.mountStatus;
            entry.device = node.status.device;
        }
        sink.entry(entry);
    }

    std::map<std::string, Node> nodes;
    std::map<std::string, std::string> aliases;
    std::uint64_t nextInode = 100;

    std::mutex lock;
    std::vector<std::string> lines;
    std::map<int, Open> opened;
    int nextDescriptor = 1000;
    std::size_t mostAtOnce = 0;
};

}  // namespace vostrel::test
