#include "base/SystemError.h"

#include <fmt/format.h>

#include <system_error>

namespace vostrel {

std::string SystemError::description() const {
    return fmt::format("Could not {} {}: {}", operation, path.native(), std::generic_category().message(code));
}

}  // namespace vostrel
