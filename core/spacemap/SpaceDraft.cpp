#include "spacemap/SpaceDraft.h"

#include "base/Checked.h"

namespace vostrel {

namespace {

void add(std::int64_t& sum, std::int64_t more, const char* what) {
    sum = checkedAdd(sum, more, what);
}

}  // namespace

SpaceDraft SpaceDraft::file(std::string name, std::int64_t bytes, std::int32_t device, std::uint64_t inode) {
    SpaceDraft made(std::move(name), Kind::file);
    made.bytes = bytes;
    made.files = 1;
    made.device = device;
    made.inode = inode;
    return made;
}

SpaceDraft SpaceDraft::marker(std::string name, Kind kind, UnreadableReason why) {
    SpaceDraft made(std::move(name), kind);
    made.unreadable = why;
    if (why == UnreadableReason::mediaLibrary) {
        made.leftOutLibraries = 1;
    } else {
        made.unreadableCount = 1;
        made.notMeasuredCount = isLeftOutOnPurpose(why) ? 1 : 0;
    }
    return made;
}

SpaceDraft SpaceDraft::otherVolume(std::string name) {
    SpaceDraft made(std::move(name), Kind::folder);
    made.unreadable = UnreadableReason::otherDisk;
    return made;
}

std::size_t SpaceDraft::nodeCount() const {
    std::size_t count = 1;
    for (const SpaceDraft& child : children)
        count += child.nodeCount();
    return count;
}

void SpaceDraft::adopt(SpaceDraft child) {
    absorb(child);
    children.push_back(std::move(child));
}

void SpaceDraft::absorb(const SpaceDraft& child) {
    add(bytes, child.bytes, "the size of a folder");
    add(files, child.files, "the number of files");
    add(unreadableCount, child.unreadableCount, "the number of unreadable places");
    add(notMeasuredCount, child.notMeasuredCount, "the number of places left out");
    add(leftOutLibraries, child.leftOutLibraries, "the number of libraries");
    stopped = stopped || child.stopped;
}

void SpaceDraft::fold(const SpaceDraft& child) {
    absorb(child);
    add(entries, child.isAggregate() ? child.entries : 1, "the number of entries");
}

}  // namespace vostrel
