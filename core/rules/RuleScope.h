#pragma once

namespace vostrel {

/// Which entries of a root are candidates: each entry directly in it, file or folder, as one item; every file at any
/// depth; or only files directly in it.
enum class RuleScope { topLevelItems, allFiles, topLevelFiles };

}  // namespace vostrel
