#include "finder/FinderListing.h"

#include <cerrno>
#include <optional>

namespace vostrel {

namespace {

class OnlyEntry final : public EntrySink {
public:
    void entry(const FolderEntry& entry) override { found = entry; }

    std::optional<FinderEntry> found;
};

}  // namespace

std::expected<FinderEntry, int> FinderListing::parse(std::span<const std::byte> record) {
    OnlyEntry only;
    const auto read = readAttributeRecords(record, 1, request(), only);
    if (!read) return std::unexpected(read.error());
    if (!only.found) return std::unexpected(EIO);
    return *only.found;
}

}  // namespace vostrel
