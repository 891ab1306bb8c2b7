#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

#include "filesystem/FileIdentity.h"

namespace vostrel {

/// Remembers which hard-linked files were already counted, by device and file id.
///
/// One set may be shared by several walks on several threads (all places of one snapshot, say): a file with many names
/// then counts once across them all. It only grows; a walk never clears it. Open addressing, because a walk asks it
/// for every name of every hard-linked file.
class LinkSet {
public:
    /// Whether this file is met for the first time. Thread-safe.
    [[nodiscard]] bool insert(FileIdentity file);

private:
    struct Slot {
        FileIdentity file;
        bool isTaken = false;
    };

    Slot& slotFor(FileIdentity file);
    void grow();

    std::mutex lock;
    std::vector<Slot> slots;  // a power of two in number, at most half of them taken
    std::size_t count = 0;
};

}  // namespace vostrel
