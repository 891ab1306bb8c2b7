#include "filesystem/FolderWalk.h"

#include <algorithm>
#include <thread>

#include "base/SystemError.h"
#include "platform/Materialisation.h"

namespace vostrel {

namespace {

// A level keeps this many of its next subfolders with the helpers, and asks about more when half of them are used up.
constexpr std::size_t foldersAhead = 32;

// Below this many folders a walk is over before a helper has woken.
constexpr std::size_t foldersBeforeHelp = 32;

ListingEnd endOf(ListedFolder::Result result) {
    if (result == ListedFolder::Result::failed) return ListingEnd::failed;
    if (result == ListedFolder::Result::stopped) return ListingEnd::stopped;
    return ListingEnd::whole;
}

}  // namespace

unsigned FolderWalk::usualHelpers() {
    return std::thread::hardware_concurrency() > 1 ? 7 : 0;
}

FolderWalk::FolderWalk(FolderSource& source, WalkAccounting& forWhom, ListingDetail detail, unsigned helpers)
    : accounting(forWhom),
      reader(source, detail, [this] { ahead.report(listedTest); }),
      ahead(source, detail, helpers) {}

FolderWalk::Ending FolderWalk::walk(const std::string& root, std::optional<WalkVolume> rootVolume, std::size_t depth,
                                    const WalkBudget& limit) {
    const MaterialisationGuard noDownloads;
    if (!noDownloads.holds()) return Ending::notRun;
    budget = &limit;
    maxDepth = depth;
    foldersListed = 0;
    isStopped = false;

    ListedFolder* first = takeFolder();
    first->path = root;
    first->depth = 0;
    first->parentVolume = rootVolume;
    accounting.prepare(first->asWalked(), nullptr, *first->notes);
    reader.read(*first, stopTest);
    account(*first);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (isStopped || level.next == level.folder->subfolders.size()) {
            leave();
        } else {
            walkSubfolder(level);
        }
    }
    if (!isStopped) return Ending::finished;
    ahead.abandon();
    putBackAll();
    return Ending::stopped;
}

void FolderWalk::walkSubfolder(Level& level) {
    if (ahead.hasHelpers()) listAhead(level);
    ListedFolder::Subfolder& subfolder = level.folder->subfolders[level.next];
    const bool isQueued = subfolder.ahead != nullptr;
    ListedFolder* folder = isQueued ? subfolder.ahead : folderFor(*level.folder, subfolder);
    if (level.folder->decided <= level.next)
        subfolder.decision = accounting.decide(folder->asWalked(), *level.folder->notes);
    const WalkDecision decision = subfolder.decision;
    subfolder.ahead = nullptr;
    ++level.next;

    if (!decision.enters()) {
        accounting.leftOut(folder->asWalked(), decision);
    } else if (folder->depth > maxDepth) {
        accounting.tooDeep(folder->asWalked());
    } else if (mustStop()) {
        accounting.notReached(folder->asWalked());
    } else {
        if (isQueued) {
            ahead.await(*folder, reader, stopTest, listedTest);
        } else {
            accounting.prepare(folder->asWalked(), level.folder->notes.get(), *folder->notes);
            reader.read(*folder, stopTest);
        }
        account(*folder);
        return;
    }
    if (!isQueued) putBack(folder);  // a queued one may still be with a helper; it comes back when the walk ends
}

void FolderWalk::listAhead(const Level& level) {
    const std::size_t left = level.folder->subfolders.size() - level.next;
    const bool isWorthIt = foldersListed >= foldersBeforeHelp && left > 1;
    if (isWorthIt && level.folder->decided <= level.next + foldersAhead / 2) queueSubfolders(*level.folder, level.next);
}

void FolderWalk::queueSubfolders(ListedFolder& folder, std::size_t from) {
    if (folder.depth + 1 > maxDepth) return;
    const std::size_t end = std::min(folder.subfolders.size(), from + foldersAhead);
    toQueue.clear();
    for (folder.decided = std::max(folder.decided, from); folder.decided < end; ++folder.decided) {
        ListedFolder::Subfolder& subfolder = folder.subfolders[folder.decided];
        ListedFolder* next = folderFor(folder, subfolder);
        subfolder.decision = accounting.decide(next->asWalked(), *folder.notes);
        if (subfolder.decision.enters()) {
            accounting.prepare(next->asWalked(), folder.notes.get(), *next->notes);
            subfolder.ahead = next;
            toQueue.push_back(next);
        } else {
            putBack(next);
        }
    }
    if (!toQueue.empty()) ahead.queue(toQueue);
}

void FolderWalk::account(ListedFolder& folder) {
    ++foldersListed;
    const WalkedFolder walked = folder.asWalked();
    switch (folder.result) {
        case ListedFolder::Result::couldNotOpen:
            if (folder.depth == 0 || !isMissing(folder.error)) accounting.couldNotOpen(walked, folder.error);
            putBack(&folder);
            return;
        case ListedFolder::Result::onOtherVolume:
            accounting.onOtherVolume(walked);
            putBack(&folder);
            return;
        case ListedFolder::Result::listed:
        case ListedFolder::Result::failed:
        case ListedFolder::Result::stopped:
            accounting.listed(walked, folder.status, *folder.notes, endOf(folder.result), folder.error);
            levels.push_back({&folder, 0});
            return;
    }
}

void FolderWalk::leave() {
    ListedFolder& folder = *levels.back().folder;
    for (std::size_t left = levels.back().next; left < folder.subfolders.size(); ++left) {
        ListedFolder* missed = folderFor(folder, folder.subfolders[left]);
        accounting.notReached(missed->asWalked());
        putBack(missed);
    }
    accounting.finished(folder.asWalked(), isStopped);
    putBack(&folder);
    levels.pop_back();
}

bool FolderWalk::mustStop() {
    isStopped = isStopped || budget->isSpent();
    return isStopped;
}

ListedFolder* FolderWalk::folderFor(const ListedFolder& parent, const ListedFolder::Subfolder& subfolder) {
    ListedFolder* folder = takeFolder();
    parent.pathOf(subfolder, folder->path);
    folder->depth = parent.depth + 1;
    folder->parentVolume = parent.volume();
    return folder;
}

ListedFolder* FolderWalk::takeFolder() {
    if (unused.empty()) {
        folders.push_back(std::make_unique<ListedFolder>());
        folders.back()->notes = accounting.makeNotes();
        unused.push_back(folders.back().get());
    }
    ListedFolder* folder = unused.back();
    unused.pop_back();
    return folder;
}

void FolderWalk::putBack(ListedFolder* folder) {
    folder->clear();
    unused.push_back(folder);
}

void FolderWalk::putBackAll() {
    unused.clear();
    for (const auto& folder : folders)
        putBack(folder.get());
}

}  // namespace vostrel
