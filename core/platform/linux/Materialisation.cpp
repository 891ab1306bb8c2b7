#include "platform/Materialisation.h"

namespace vostrel {

// Linux has no dataless files.
MaterialisationGuard::MaterialisationGuard() : isSet(true) {}
MaterialisationGuard::~MaterialisationGuard() = default;

}  // namespace vostrel
