#include "rules/PresetCatalog.h"

#include <algorithm>

namespace vostrel {

const Preset* PresetCatalog::preset(std::string_view id) const {
    const auto found = std::ranges::find(list, id, &Preset::id);
    return found == list.end() ? nullptr : &*found;
}

}  // namespace vostrel
