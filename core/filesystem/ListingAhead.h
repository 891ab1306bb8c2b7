#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "filesystem/FolderReader.h"

namespace vostrel {

/// Helper threads that list the folders which a walk enters next, while the walking thread accounts for those before.
///
/// The walking thread queues folders (it alone has asked whether they may be opened), learns which are listed, so that
/// it can queue their subfolders in turn, and `await`s each when the walk has come to it. It never waits for a listing
/// that a helper has begun while another folder is left to list. Folders belong to the walk; this only lends them out.
///
/// As many helpers work at once as there are other cores, and more while the disk keeps them waiting: with warm caches
/// a thread too many costs more than it brings, with cold ones most threads wait. The threads start when there is first
/// something to share and end with the object.
class ListingAhead {
public:
    ListingAhead(FolderSource& source, ListingDetail detail, unsigned helpers);
    ListingAhead(const ListingAhead&) = delete;
    ListingAhead& operator=(const ListingAhead&) = delete;
    ~ListingAhead();

    [[nodiscard]] bool hasHelpers() const { return helperCount > 0; }
    /// Whether so little is queued and listed ahead of the walk that folders further away may follow.
    [[nodiscard]] bool hasRoom() const { return queued < mostQueued && heldBytes < mostHeldBytes; }

    /// Queues folders in the walk's order, to be listed before all that were queued earlier.
    void queue(const std::vector<ListedFolder*>& folders);
    /// Returns once `folder` is listed, by a helper or by `reader` here. Meanwhile every other folder that came to be
    /// listed is handed to `listed` on this thread, once. `mustStop` is asked while waiting; once it says yes the
    /// listings under way end early as `stopped`.
    void await(ListedFolder& folder, FolderReader& reader, const std::function<bool()>& mustStop,
               const std::function<void(ListedFolder&)>& listed);
    /// Hands over the folders that came to be listed, as `await` does. Costs nothing while there are none.
    void report(const std::function<void(ListedFolder&)>& listed);
    /// Takes back every folder that nobody has begun and waits for those under way, which end early.
    void abandon();

private:
    using Guard = std::unique_lock<std::mutex>;

    void begin();
    void help();

    // All with the lock held; `reportHeld` lets go of it meanwhile.
    [[nodiscard]] bool hasWorkForHelper() const { return !waiting.empty() && underWay < mostUnderWay; }
    ListedFolder* takeNext();
    void finish(ListedFolder& folder);
    void adjust(bool hasWaited);
    void reportHeld(Guard& guard, const std::function<void(ListedFolder&)>& listed);

    // What the helpers find when the walking thread is busy with one very wide folder.
    static constexpr std::size_t mostQueued = 4096;
    // A folder can name a million subfolders: listings ahead of the walk hold no more memory than this and one folder.
    static constexpr std::size_t mostHeldBytes = 32U << 20U;

    FolderSource& source;
    ListingDetail detail;
    unsigned helperCount;
    std::vector<std::thread> threads;
    bool isBegun = false;
    std::size_t queued = 0;  // the walking thread's own count

    std::mutex lock;
    std::condition_variable somethingToList;
    std::condition_variable somethingListed;
    std::vector<ListedFolder*> waiting;      // the one that the walk comes to first stands last
    std::vector<ListedFolder*> listedAhead;  // those that the walking thread has not heard of
    std::vector<ListedFolder*> reported;     // kept for its memory
    std::size_t idleHelpers = 0;
    std::size_t underWay = 0;
    std::size_t leastUnderWay;
    std::size_t mostUnderWay;
    std::size_t listingsWithoutWait = 0;
    bool isEnding = false;
    std::atomic<bool> isStopping = false;
    std::atomic<std::size_t> heldBytes = 0;
    std::atomic<bool> hasNews = false;  // `listedAhead` is not empty
};

}  // namespace vostrel
