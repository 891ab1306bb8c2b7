#include "filesystem/LinkSet.h"

namespace vostrel {

namespace {

/// Spreads neighbouring inodes over the table: the finaliser of SplitMix64.
std::uint64_t mixed(FileIdentity file) {
    std::uint64_t bits = file.inode + static_cast<std::uint32_t>(file.device) * 0x9E3779B97F4A7C15ULL;
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBULL;
    return bits ^ (bits >> 31U);
}

}  // namespace

bool LinkSet::insert(FileIdentity file) {
    const std::lock_guard guard(lock);
    if (2 * (count + 1) > slots.size()) grow();
    Slot& slot = slotFor(file);
    if (slot.isTaken) return false;
    slot = {file, true};
    ++count;
    return true;
}

LinkSet::Slot& LinkSet::slotFor(FileIdentity file) {
    const std::size_t mask = slots.size() - 1;
    std::size_t at = mixed(file) & mask;
    while (slots[at].isTaken && slots[at].file != file)
        at = (at + 1) & mask;
    return slots[at];
}

void LinkSet::grow() {
    std::vector<Slot> before(slots.empty() ? 64 : slots.size() * 2);
    before.swap(slots);
    for (const Slot& slot : before) {
        if (slot.isTaken) slotFor(slot.file) = slot;
    }
}

}  // namespace vostrel
