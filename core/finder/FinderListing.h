#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <span>

#include "finder/FinderStamp.h"
#include "platform/AttributeRecords.h"

namespace vostrel {

/// How a search lists folders: everything it wants to know of an entry comes with the listing, so that it opens and
/// looks at no file.
struct FinderListing {
    static constexpr ListingDetail detail = ListingDetail::everything;

    /// What macOS's bulk listing is asked for.
    [[nodiscard]] static AttributeRequest request() { return attributeRequest(detail); }
    /// One record as that listing packs it. The entry's name lies in `record`. Fails with an error number.
    [[nodiscard]] static std::expected<FinderEntry, int> parse(std::span<const std::byte> record);
};

}  // namespace vostrel
