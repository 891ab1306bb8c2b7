#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "filesystem/FolderSource.h"

namespace vostrel::test {

/// A made-up tree in the file system's place, for what a file system will not do on request: links, devices and mounts
/// at will, folders that fail, vanish or hang, entries that cannot be examined. It keeps a journal of what was done.
///
/// Build it first and walk it then: while a walk runs, any thread may call it and nothing of the tree may change.
class FakeFolderTree final : public FolderSource {
public:
    struct ListingFailure {
        int error = 0;
        std::size_t afterEntries = 0;
    };

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
        std::optional<ListingFailure> listingFailure;
        /// Opening, or the first read, does not come back before `letGo`.
        bool hangsInOpen = false;
        bool hangsInListing = false;
        std::vector<std::string> names;
    };

    /// Makes what is not there yet, and the folders above it. References stay valid.
    Node& folder(const std::string& path);
    Node& file(const std::string& path, std::int64_t allocated = 4096);
    Node& link(const std::string& path);
    /// A further name of the file at `existing`, whose link count grows.
    void hardLink(const std::string& path, const std::string& existing);
    /// Another path of the same folder, through a link further up.
    void alias(const std::string& path, const std::string& existing) { aliases[path] = existing; }
    [[nodiscard]] Node& at(const std::string& path) { return nodes.at(path); }
    [[nodiscard]] const std::map<std::string, Node>& all() const { return nodes; }

    /// How many entries one read reports at most.
    std::size_t entriesPerRead = 3;

    /// Adds a line of the test's own to the journal: a decision, a look at the budget.
    void note(std::string line);
    /// "open /a", "status /a", "read /a", "close /a", and the notes, in the order in which they came.
    [[nodiscard]] std::vector<std::string> journal() const;
    /// The journal's lines of one kind, without the word: which folders were opened, in what order.
    [[nodiscard]] std::vector<std::string> journalOf(std::string_view kind) const;
    void clearJournal();
    [[nodiscard]] std::size_t openNow() const;
    [[nodiscard]] std::size_t mostOpen() const;
    /// Blocks until the journal has a line: tells what other threads have done.
    void awaitLine(std::string_view line) const;
    /// Blocks until some call hangs.
    void awaitHanging() const;
    void letGo();

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
    Open& openFolder(int descriptor);
    void hang();

    std::map<std::string, Node> nodes;
    std::map<std::string, std::string> aliases;
    std::uint64_t nextInode = 100;

    mutable std::mutex lock;
    mutable std::condition_variable changed;
    std::vector<std::string> lines;
    std::map<int, Open> open_;
    int nextDescriptor = 1000;
    std::size_t mostAtOnce = 0;
    std::size_t hanging = 0;
    bool mayGoOn = false;
};

/// A tree below "/r" of about `folders` folders, the same for the same seed: deep and wide places, hard links across
/// folders, symbolic links, mounts of every kind, and every fault that a folder or an entry can have.
void plantRandomTree(FakeFolderTree& tree, std::mt19937& random, int folders);

}  // namespace vostrel::test
