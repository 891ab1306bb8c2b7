#pragma once

namespace vostrel {

/// Which date of an item counts as its age: when its content changed, when it arrived in its folder, or when it was
/// last opened.
enum class AgeBasis { modified, added, lastOpened };

}  // namespace vostrel
