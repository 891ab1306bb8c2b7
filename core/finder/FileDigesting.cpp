#include "finder/FileDigesting.h"

#include <algorithm>

#include "base/Visit.h"

namespace vostrel {

FileHasher::Range FileDigesting::rangeOf(DigestStage stage, std::int64_t size) {
    const std::int64_t block = std::min(size, FileHasher::firstBlockBytes);
    switch (stage) {
        case DigestStage::firstBlock:
            return {.start = 0, .length = block};
        case DigestStage::lastBlock:
            return {.start = size - block, .length = block};
        case DigestStage::whole:
            break;
    }
    return {.start = 0, .length = size};
}

DigestResult FileDigester::digest(const DuplicatePoolEntry& entry, DigestStage stage,
                                  const std::function<bool()>& isCancelled) const {
    using Kind = DigestResult::Kind;
    const auto range = rangeOf(stage, entry.stamp.size);
    return visit(
        hasher.hash(entry.path.full(), entry.stamp, range, isCancelled),
        [](const HashedBytes& hashed) { return DigestResult{.kind = Kind::digest, .digest = hashed.digest}; },
        [](const HashUnreadable&) { return DigestResult{.kind = Kind::unreadable, .digest = {}}; },
        [](const HashChanged&) { return DigestResult{.kind = Kind::changed, .digest = {}}; },
        [](const HashCancelled&) { return DigestResult{.kind = Kind::cancelled, .digest = {}}; });
}

}  // namespace vostrel
