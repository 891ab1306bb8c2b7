#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "filesystem/FolderReader.h"
#include "filesystem/ListingAhead.h"
#include "filesystem/WalkAccounting.h"
#include "filesystem/WalkBudget.h"

namespace vostrel {

/// The one walk under everything that measures a tree of folders.
///
/// It opens, checks, lists and closes folder after folder, depth first and in listing order, and hands what it meets to
/// a `WalkAccounting`. A folder's own steps: open, look at it, compare its volume with its parent's, list, close; then
/// for each subfolder: the access decision, the depth limit, the budget, and down. A folder is closed before its
/// subfolders are walked, and the walk keeps its place in memory instead of on the stack, so depth costs neither
/// descriptors nor stack.
///
/// With helpers, folders that come next are listed on other threads meanwhile; what the accounting sees is the same for
/// any number of them, none included, and without helpers every call comes in exactly the sequential order. Memory
/// grows with depth and with the widest folder's subfolders, never with the number of files.
///
/// No cloud-only file is downloaded: every thread that lists sets its policy first. One thread uses an object at a
/// time; helpers stay with the object from walk to walk.
class FolderWalk {
public:
    /// How many helpers serve best: more than there are cores, because with cold caches most of them wait for the disk;
    /// none on a single core.
    static unsigned usualHelpers();

    /// Source and accounting must outlive the object.
    FolderWalk(FolderSource& source, WalkAccounting& accounting, ListingDetail detail, unsigned helpers);

    enum class Ending {
        finished,
        /// The budget ran out.
        stopped,
        /// The thread's policy against downloads could not be set, so nothing was opened.
        notRun,
    };
    /// Walks the folder at `root`, an absolute path without links. The root itself is not asked about: whether it may
    /// be opened is the caller's question. `rootVolume`, when known, is the volume that the root must lie on.
    Ending walk(const std::string& root, std::optional<WalkVolume> rootVolume, std::size_t maxDepth,
                const WalkBudget& budget);

    /// Folders that the walking thread holds open at this moment, and the most it ever held.
    [[nodiscard]] std::size_t openNow() const { return reader.openNow(); }
    [[nodiscard]] std::size_t peakOpen() const { return reader.peakOpen(); }

private:
    /// A folder on the way from the root to where the walk is.
    struct Level {
        ListedFolder* folder = nullptr;
        std::size_t next = 0;  // the subfolder that is walked next
    };

    void walkSubfolder(Level& level);
    void listAhead(const Level& level);
    void queueSubfolders(ListedFolder& folder, std::size_t from);
    void account(ListedFolder& folder);
    void leave();
    [[nodiscard]] bool mustStop();

    ListedFolder* folderFor(const ListedFolder& parent, const ListedFolder::Subfolder& subfolder);
    ListedFolder* takeFolder();
    void putBack(ListedFolder* folder);
    void putBackAll();

    WalkAccounting& accounting;
    FolderReader reader;
    std::function<bool()> stopTest = [this] { return mustStop(); };
    std::function<void(ListedFolder&)> listedTest = [this](ListedFolder& folder) {
        if (ahead.hasRoom()) queueSubfolders(folder, 0);
    };

    // Of the walk under way.
    const WalkBudget* budget = nullptr;
    std::size_t maxDepth = 0;
    std::vector<Level> levels;
    std::size_t foldersListed = 0;
    bool isStopped = false;

    std::vector<std::unique_ptr<ListedFolder>> folders;  // every one there is, lent out and taken back
    std::vector<ListedFolder*> unused;
    std::vector<ListedFolder*> toQueue;
    ListingAhead ahead;  // last, so that its threads end before what they fill
};

}  // namespace vostrel
