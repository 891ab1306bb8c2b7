#include "stores/StoreError.h"

#include "base/Visit.h"

namespace vostrel {

std::string StoreError::description() const {
    return visit(
        cause, [](const SystemError& error) { return error.description(); },
        [](const JSONError& error) { return error.text(); });
}

}  // namespace vostrel
