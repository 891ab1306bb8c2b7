#include "finder/FinderNotes.h"

#include "base/Checked.h"
#include "finder/FinderPlaces.h"

namespace vostrel {

namespace {

void countOne(std::int64_t& sum) {
    sum = checkedAdd<std::int64_t>(sum, 1, "the number of entries");
}

}  // namespace

void FinderNotes::entry(const FolderEntry& entry) {
    look(entry.name);
    if (entry.error != 0) return countOne(others.unreadable);
    if (entry.type == EntryType::link) return countOne(others.links);
    if (entry.type == EntryType::folder) return countOne(others.otherVolumes);  // the walk hands over only those
    if (entry.type != EntryType::file) return;
    const WalkedFile file{.path = {}, .stamp = FinderStamp::of(entry), .added = entry.added};
    if (!isToolsAround && thresholds.takes(file)) {
        taken.push_back({names.size(), entry.name.size(), file.stamp, file.added, entry.isDataless});
        names += entry.name;
    } else if (entry.linkCount >= 2) {
        linkedOthers.push_back(entry.fileID);
    } else {
        countOne(others.files);
        if (entry.isDataless) countOne(others.cloudOnly);
    }
}

void FinderNotes::subfolder(std::string_view name) {
    look(name);
}

void FinderNotes::look(std::string_view name) {
    marks.ofTools = marks.ofTools || finder_places::marksTools(name);
    marks.ofRepository = marks.ofRepository || finder_places::marksRepository(name);
    marks.head = marks.head || name == "HEAD";
    marks.objects = marks.objects || name == "objects";
    marks.references = marks.references || name == "refs";
}

void FinderNotes::clear() {
    taken.clear();
    names.clear();
    linkedOthers.clear();
    others = {};
    marks = {};
    isToolsAround = false;
}

std::size_t FinderNotes::footprint() const {
    return taken.capacity() * sizeof(File) + names.capacity() + linkedOthers.capacity() * sizeof(std::uint64_t);
}

}  // namespace vostrel
