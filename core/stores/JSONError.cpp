#include "stores/JSONError.h"

#include <fmt/format.h>

namespace vostrel {

JSONError JSONError::under(std::string_view key) && {
    path.emplace(path.begin(), key);
    return std::move(*this);
}

JSONError JSONError::under(std::size_t index) && {
    return std::move(*this).under(fmt::format("[{}]", index));
}

std::string JSONError::text() const {
    std::string place;
    for (const auto& key : path) {
        if (!place.empty() && !key.starts_with('[')) place += '.';
        place += key;
    }
    return place.empty() ? description : place + ": " + description;
}

std::unexpected<JSONError> jsonFault(std::string description) {
    return std::unexpected(JSONError{std::move(description), {}});
}

}  // namespace vostrel
