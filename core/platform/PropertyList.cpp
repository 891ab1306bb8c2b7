#include "platform/PropertyList.h"

#include <algorithm>

namespace vostrel {

const PropertyList* PropertyList::find(std::string_view key) const {
    const auto* dictionary = as<Dictionary>();
    if (dictionary == nullptr) return nullptr;
    const auto found = std::ranges::find(*dictionary, key, &Dictionary::value_type::first);
    return found == dictionary->end() ? nullptr : &found->second;
}

}  // namespace vostrel
