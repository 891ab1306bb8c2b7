#pragma once

#include "finder/FinderResult.h"
#include "stores/JSONValue.h"

namespace vostrel {

/// A search as its JSON document.
[[nodiscard]] JSONValue documentOf(const FinderResult& result);

}  // namespace vostrel
