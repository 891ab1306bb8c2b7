#include "finder/FileHasher.h"

#include <algorithm>
#include <cerrno>
#include <vector>

namespace vostrel {

namespace {

bool isStill(int file, const FinderStamp& expected) {
    const auto status = statusOfOpen(file);
    return status && status->type == EntryType::file && FinderStamp::of(*status).isUnchanged(expected);
}

}  // namespace

HashOutcome FileHasher::hash(const std::filesystem::path& path, const FinderStamp& expected, const Range& range,
                             const std::function<bool()>& isCancelled) const {
    const OwnedDescriptor file = opener(path);
    if (!file.isOpen()) return HashUnreadable{errno};
    turnOffCaching(file.get());
    if (!isStill(file.get(), expected)) return HashChanged{};
    thread_local std::vector<std::byte> buffer(chunkBytes);
    SHA256 digest;
    std::int64_t done = 0;
    while (done < range.length) {
        if (done > 0 && isCancelled()) return HashCancelled{};
        const auto wanted = std::min(range.length - done, static_cast<std::int64_t>(chunkBytes));
        const std::span<std::byte> place(buffer.data(), static_cast<std::size_t>(wanted));
        const std::int64_t count = reader(file.get(), place, range.start + done);
        if (count < 0) return HashUnreadable{errno};
        if (count == 0) return HashChanged{};  // it became shorter
        digest.update(place.first(static_cast<std::size_t>(count)));
        done += count;
    }
    // Written to while it was read, it may have been neither the one nor the other.
    if (!isStill(file.get(), expected)) return HashChanged{};
    return HashedBytes{digest.finish(), done};
}

}  // namespace vostrel
