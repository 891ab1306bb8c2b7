#include "filesystem/ListingAhead.h"

#include <algorithm>
#include <chrono>
#include <ranges>
#include <system_error>

#include "platform/Materialisation.h"
#include "platform/WaitMeter.h"

namespace vostrel {

namespace {

// While the walking thread waits for a helper it looks at its budget this often.
constexpr std::chrono::milliseconds budgetInterval{10};

// After so many listings that did not wait for the disk one helper less is put to work.
constexpr std::size_t listingsUntilCalm = 16;

}  // namespace

ListingAhead::ListingAhead(FolderSource& from, ListingDetail wanted, unsigned helpers)
    : source(from),
      detail(wanted),
      helperCount(helpers),
      leastUnderWay(std::max(1U, std::thread::hardware_concurrency() - 1)),
      mostUnderWay(leastUnderWay) {}

ListingAhead::~ListingAhead() {
    {
        const std::lock_guard guard(lock);
        isEnding = true;
    }
    isStopping = true;
    somethingToList.notify_all();
    for (auto& thread : threads)
        thread.join();
}

void ListingAhead::begin() {
    isBegun = true;
    try {
        for (unsigned helper = 0; helper < helperCount; ++helper)
            threads.emplace_back([this] { help(); });
    } catch (const std::system_error&) {
        const std::lock_guard guard(lock);
        helperCount = static_cast<unsigned>(threads.size());  // there are no more to be had
    }
}

void ListingAhead::queue(const std::vector<ListedFolder*>& folders) {
    if (!isBegun) begin();
    queued += folders.size();
    bool wakesOne = false;
    {
        const std::lock_guard guard(lock);
        waiting.insert(waiting.end(), folders.rbegin(), folders.rend());
        wakesOne = idleHelpers > 0 && hasWorkForHelper();
    }
    if (wakesOne) somethingToList.notify_one();
}

void ListingAhead::help() {
    const MaterialisationGuard noDownloads;
    if (!noDownloads.holds()) return;  // the walking thread lists alone
    FolderReader reader(source, detail);
    WaitMeter waits;
    const auto mustStop = [this] { return isStopping.load(std::memory_order_relaxed); };

    Guard guard(lock);
    while (true) {
        ++idleHelpers;
        somethingToList.wait(guard, [this] { return isEnding || hasWorkForHelper(); });
        --idleHelpers;
        if (isEnding) return;
        ListedFolder* folder = takeNext();
        ++underWay;
        const bool wakesAnother = idleHelpers > 0 && hasWorkForHelper();
        guard.unlock();
        if (wakesAnother) somethingToList.notify_one();
        waits.start();
        reader.read(*folder, mustStop);
        const bool hasWaited = waits.hasWaitedSinceStart();
        guard.lock();
        --underWay;
        adjust(hasWaited);
        finish(*folder);
        somethingListed.notify_one();
    }
}

void ListingAhead::adjust(bool hasWaited) {
    if (hasWaited) {
        listingsWithoutWait = 0;
        mostUnderWay = std::min<std::size_t>(mostUnderWay + 1, helperCount);
    } else if (++listingsWithoutWait >= listingsUntilCalm) {
        listingsWithoutWait = 0;
        if (mostUnderWay > leastUnderWay) --mostUnderWay;
    }
}

ListedFolder* ListingAhead::takeNext() {
    if (waiting.empty()) return nullptr;
    ListedFolder* next = waiting.back();
    waiting.pop_back();
    next->state = ListedFolder::State::beingListed;
    return next;
}

void ListingAhead::finish(ListedFolder& folder) {
    folder.state = ListedFolder::State::ready;
    heldBytes += folder.footprint();
    listedAhead.push_back(&folder);
    hasNews = true;
}

void ListingAhead::report(const std::function<void(ListedFolder&)>& listed) {
    if (!hasNews.load(std::memory_order_relaxed)) return;
    Guard guard(lock);
    reportHeld(guard, listed);
}

void ListingAhead::reportHeld(Guard& guard, const std::function<void(ListedFolder&)>& listed) {
    reported.clear();
    reported.swap(listedAhead);
    hasNews = false;
    guard.unlock();
    for (ListedFolder* folder : reported)
        listed(*folder);
    guard.lock();
}

void ListingAhead::await(ListedFolder& folder, FolderReader& reader, const std::function<bool()>& mustStop,
                         const std::function<void(ListedFolder&)>& listed) {
    --queued;
    Guard guard(lock);
    reportHeld(guard, listed);
    if (folder.state == ListedFolder::State::waiting) {
        waiting.erase(std::ranges::find(waiting | std::views::reverse, &folder).base() - 1);  // near the end
        guard.unlock();
        reader.read(folder, mustStop);
        return;
    }
    while (folder.state != ListedFolder::State::ready) {
        ListedFolder* other = isStopping ? nullptr : takeNext();
        if (other == nullptr) somethingListed.wait_for(guard, budgetInterval);
        guard.unlock();
        if (other != nullptr) reader.read(*other, mustStop);
        if (mustStop()) isStopping = true;
        guard.lock();
        if (other != nullptr) finish(*other);
        reportHeld(guard, listed);
    }
    // It may have become ready while others were handed over; the walk is there now and needs no word of it.
    std::erase(listedAhead, &folder);
    heldBytes -= folder.footprint();
}

void ListingAhead::abandon() {
    Guard guard(lock);
    waiting.clear();
    listedAhead.clear();
    queued = 0;
    isStopping = true;
    somethingListed.wait(guard, [this] { return underWay == 0; });
    isStopping = false;
    listedAhead.clear();
    hasNews = false;
    heldBytes = 0;
}

}  // namespace vostrel
