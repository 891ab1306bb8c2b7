#include "spacemap/SpaceNotes.h"

#include "base/Checked.h"

namespace vostrel {

namespace {

void countOne(std::int64_t& sum) {
    sum = checkedAdd<std::int64_t>(sum, 1, "the number of entries");
}

}  // namespace

void SpaceNotes::wants(std::size_t files, std::size_t unmeasuredEntries) {
    keepsNames = files > 0;
    largest.wants(files);
    unmeasured.wants(unmeasuredEntries);
}

void SpaceNotes::entry(const FolderEntry& entry) {
    if (entry.error != 0) {
        countOne(sums.unreadable);
        unmeasured.offer(entry.name, 0, static_cast<std::uint64_t>(entry.error));
    } else if (entry.type == EntryType::link) {
        countOne(sums.links);
    } else if (entry.type == EntryType::folder) {  // the walk hands over only those it cannot enter
        unmeasured.offer(entry.name, 0, 0);
    } else {
        countOne(sums.names);
        const File file{entry.name, entry.allocated, entry.fileID};
        if (entry.linkCount < 2) return count(file);
        const bool mayBeShown = keepsNames && file.bytes > floor.load(std::memory_order_relaxed);
        linked.push_back({linkedNames.size(), mayBeShown ? file.name.size() : 0, file.bytes, file.fileID});
        if (mayBeShown) linkedNames += file.name;
    }
}

void SpaceNotes::clear() {
    sums = {};
    largest.clear();
    unmeasured.clear();
    linked.clear();
    linkedNames.clear();
    wants(0, 0);
}

std::size_t SpaceNotes::footprint() const {
    return largest.footprint() + unmeasured.footprint() + linked.capacity() * sizeof(LinkedFile) +
           linkedNames.capacity();
}

SpaceNotes::File SpaceNotes::linkedFile(std::size_t index) const {
    const LinkedFile& file = linked[index];
    return {std::string_view(linkedNames).substr(file.nameStart, file.nameLength), file.bytes, file.fileID};
}

void SpaceNotes::count(const File& file) {
    sums.bytes = checkedAdd(sums.bytes, file.bytes, "the size of a folder");
    countOne(sums.files);
    if (file.bytes > floor.load(std::memory_order_relaxed)) largest.offer(file.name, file.bytes, file.fileID);
}

}  // namespace vostrel
