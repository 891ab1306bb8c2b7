#include "filesystem/FolderReader.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vostrel {

namespace {

/// Parts the entries of one listing: subfolders that can be entered, and everything else for the notes.
class ListedFolderSink final : public EntrySink {
public:
    ListedFolderSink(ListedFolder& folder, const std::function<void()>& betweenEntries)
        : target(folder), meanwhile(betweenEntries) {}

    void entry(const FolderEntry& entry) override {
        if (++count % entriesBetween == 0 && meanwhile) meanwhile();
        if (entry.type != EntryType::folder || entry.error != 0 || entry.mountStatus != 0) {
            target.notes->entry(entry);
            return;
        }
        target.subfolders.push_back({target.names.size(), entry.name.size(), {}, nullptr});
        target.names += entry.name;
        target.notes->subfolder(entry.name);
    }

private:
    // With cold caches this many take a millisecond or two.
    static constexpr std::size_t entriesBetween = 16;

    ListedFolder& target;
    const std::function<void()>& meanwhile;
    std::size_t count = 0;
};

}  // namespace

WalkedFolder ListedFolder::asWalked() const {
    const std::string_view whole = path;
    return {whole, whole.substr(whole.rfind('/') + 1), depth};
}

std::string_view ListedFolder::nameOf(const Subfolder& subfolder) const {
    return std::string_view(names).substr(subfolder.nameStart, subfolder.nameLength);
}

void ListedFolder::pathOf(const Subfolder& subfolder, std::string& out) const {
    out = path;
    if (!out.ends_with('/')) out += '/';
    out += nameOf(subfolder);
}

std::size_t ListedFolder::footprint() const {
    return path.capacity() + names.capacity() + subfolders.capacity() * sizeof(Subfolder) + notes->footprint();
}

void ListedFolder::clear() {
    constexpr std::size_t worthKeeping = 1U << 20U;
    if (names.capacity() + subfolders.capacity() * sizeof(Subfolder) > worthKeeping) {
        names = {};
        subfolders = {};
    }
    names.clear();
    subfolders.clear();
    notes->clear();
    result = Result::listed;
    error = 0;
    decided = 0;
    state = State::waiting;
}

FolderReader::FolderReader(FolderSource& from, ListingDetail detail, std::function<void()> betweenEntries)
    : source(from), listing(detail), meanwhile(std::move(betweenEntries)) {}

void FolderReader::read(ListedFolder& folder, const std::function<bool()>& mustStop) {
    const int descriptor = source.open(folder.path);
    if (descriptor < 0) {
        folder.result = ListedFolder::Result::couldNotOpen;
        folder.error = errno;
        return;
    }
    const auto status = source.status(descriptor);
    if (!status) {
        folder.result = ListedFolder::Result::couldNotOpen;
        folder.error = status.error();
    } else {
        folder.status = *status;
        if (folder.parentVolume && *folder.parentVolume != folder.volume()) {
            folder.result = ListedFolder::Result::onOtherVolume;
        } else {
            peak = std::max(peak, ++open);
            list(descriptor, folder, mustStop);
            --open;
        }
    }
    source.close(descriptor);
}

void FolderReader::list(int descriptor, ListedFolder& folder, const std::function<bool()>& mustStop) {
    ListedFolderSink sink(folder, meanwhile);
    while (true) {
        if (mustStop()) {
            folder.result = ListedFolder::Result::stopped;
            return;
        }
        const auto step = source.readSome(descriptor, listing, sink);
        if (!step) {
            folder.result = ListedFolder::Result::failed;
            folder.error = step.error();
            return;
        }
        if (*step == FolderListing::Step::end) return;
    }
}

}  // namespace vostrel
