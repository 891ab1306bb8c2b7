#include "finder/CopyGate.h"

#include <sys/file.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/UncachedReading.h"

namespace vostrel {

namespace fs = std::filesystem;

namespace {

/// A file that is open and was found to be the one that the search saw.
OwnedDescriptor openIfUnchanged(const fs::path& path, const FinderStamp& stamp) {
    OwnedDescriptor file = openForReading(path);
    if (!file.isOpen()) return {};
    const auto status = statusOfOpen(file.get());
    const bool isTheSame = status && status->type == EntryType::file && FinderStamp::of(*status).isUnchanged(stamp);
    return isTheSame ? std::move(file) : OwnedDescriptor();
}

/// Reads until the buffer is full or the file ends.
std::optional<std::size_t> fill(int file, std::span<std::byte> buffer, std::int64_t offset) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const auto count = readAt(file, buffer.subspan(filled), offset + static_cast<std::int64_t>(filled));
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

bool haveSameContent(int first, int second, std::int64_t size, const std::function<bool()>& isCancelled) {
    std::vector<std::byte> ofFirst(FileHasher::chunkBytes);
    std::vector<std::byte> ofSecond(FileHasher::chunkBytes);
    std::int64_t offset = 0;
    while (offset < size) {
        if (isCancelled && isCancelled()) return false;
        const auto one = fill(first, ofFirst, offset);
        const auto other = fill(second, ofSecond, offset);
        if (!one || !other || *one != *other || *one == 0) return false;
        if (std::memcmp(ofFirst.data(), ofSecond.data(), *one) != 0) return false;
        offset += static_cast<std::int64_t>(*one);
    }
    return offset == size;
}

}  // namespace

CopyGate::CopyGate(const FinderResult& result, const std::set<fs::path>& chosen, std::function<bool()> isCancelled)
    : cancelTest(std::move(isCancelled)) {
    for (const auto* list : {&result.large, &result.old}) {
        for (const FinderFile& file : *list)
            found.insert_or_assign(file.path.full(), Found{file.stamp, file.trashBlock, false, {}});
    }
    for (const DuplicateGroup& group : result.groups) {
        std::map<std::int32_t, std::vector<const DuplicateCopy*>> staying;
        for (const DuplicateCopy& copy : group.copies) {
            if (!copy.mayVanish && !chosen.contains(copy.path.full())) staying[copy.stamp.device].push_back(&copy);
        }
        for (const DuplicateCopy& copy : group.copies)
            found.insert_or_assign(copy.path.full(),
                                   Found{copy.stamp, copy.trashBlock, true, staying[copy.stamp.device]});
    }
}

std::optional<std::string> CopyGate::refusalFor(const fs::path& file) const {
    const auto known = found.find(file);
    if (known == found.end()) return notFound;
    if (known->second.trashBlock) return known->second.trashBlock;
    if (known->second.isDuplicate && known->second.staying.empty()) return noCopyStays;
    return std::nullopt;
}

std::optional<std::string> CopyGate::operator()(const PlannedItem& item) {
    heldFile.reset();
    heldCopy.reset();
    if (auto refusal = refusalFor(item.url)) return refusal;
    const Found& file = found.at(item.url);
    const bool isThatFile = FileIdentity{item.device, item.fileID} == file.stamp.identity();
    if (!isThatFile || !openIfUnchanged(item.url, file.stamp).isOpen()) return changed;
    if (!file.isDuplicate) return std::nullopt;
    const bool oneStays = std::ranges::any_of(
        file.staying, [&](const DuplicateCopy* copy) { return isHeldBeside(item.url, file.stamp, *copy); });
    if (!oneStays) return noCopyLeft;
    return std::nullopt;
}

bool CopyGate::isHeldBeside(const fs::path& file, const FinderStamp& stamp, const DuplicateCopy& copy) {
    if (copy.stamp.identity() == stamp.identity()) return false;  // one file by two names is no copy
    heldFile = openIfUnchanged(file, stamp);
    heldCopy = openIfUnchanged(copy.path.full(), copy.stamp);
    if (!heldFile.isOpen() || !heldCopy.isOpen()) return false;
    const bool areLocked =
        ::flock(heldFile.get(), LOCK_EX | LOCK_NB) == 0 && ::flock(heldCopy.get(), LOCK_SH | LOCK_NB) == 0;
    if (!areLocked) return false;
    turnOffCaching(heldFile.get());
    turnOffCaching(heldCopy.get());
    if (!haveSameContent(heldFile.get(), heldCopy.get(), stamp.size, cancelTest)) return false;
    // Where they were, not only what was open, has to be as it was: a name may have been taken meanwhile.
    return openIfUnchanged(file, stamp).isOpen() && openIfUnchanged(copy.path.full(), copy.stamp).isOpen();
}

}  // namespace vostrel
