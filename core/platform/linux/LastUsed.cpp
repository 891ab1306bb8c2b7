#include "platform/LastUsed.h"

namespace vostrel {

std::optional<Date> lastUsedDate(const std::filesystem::path& /*item*/, Date accessed) {
    return accessed;
}

}  // namespace vostrel
