#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <random>
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
    Node& file(const std::string& path, std::int64_t allocated = 4096);
    /// A further name of the file at `existing`, whose link count grows.
    void hardLink(const std::string& path, const std::string& existing);
    /// Another path of the same folder, through a link further up.
    void alias(const std::string& path, const std::string& existing) { aliases[path] = existing; }
    [[nodiscard]] Node& at(const std::string& path) { return nodes.at(path); }
    [[nodiscard]] const std::map<std::string, Node>& all() const { return nodes; }

    /// How many entries one read reports at most.
    std::size_t entriesPerRead = 3;
    /// Called with each line of the journal, on the thread that does what it says, and may keep it waiting.
    std::function<void(const std::string& line)> onLine = [](const std::string&) {};

    /// Adds a line of the test's own to the journal: a decision, a look at the budget.
    void note(const std::string& line);
    /// "open /a", "status /a", "read /a", "close /a", and the notes, in the order in which they came.
    [[nodiscard]] std::vector<std::string> journal() const;
    void clearJournal();
    [[nodiscard]] std::size_t openNow() const;
    [[nodiscard]] std::size_t mostOpen() const { return mostAtOnce; }

    std::expected<FileStatus, int> lookUp(const std::string& path) override;
    std::expected<std::string, int> resolve(const std::string& path) override;
    int open(const std::string& path) override;
    std::expected<FileStatus, int> status(int folder) override;
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) override;
    void close(int folder) override;

private:
    struct Open {
        std::string path;
        const Node* node = nullptr;
        std::size_t next = 0;
    };

    Node& make(const std::string& path, EntryType type);
    Open& opened(int descriptor);

    std::map<std::string, Node> nodes;
    std::map<std::string, std::string> aliases;
    std::uint64_t nextInode = 100;

    mutable std::mutex lock;
    std::vector<std::string> lines;
    std::map<int, Open> open_;
    int nextDescriptor = 1000;
    std::size_t mostAtOnce = 0;
};

/// A tree below "/r" of about `folders` folders, the same for the same seed: deep and wide places, hard links across
/// folders, symbolic links, pipes and devices, mounts of every kind, and every fault that a folder, the root too, or an
/// entry can have.
void plantRandomTree(FakeFolderTree& tree, std::mt19937& random, int folders);

}  // namespace vostrel::test
