#pragma once

#include <optional>

#include "platform/SHA256.h"

namespace vostrel {

/// Says which blocks of its disk an open file lies on, when it shares all of them with others: files with the same
/// answer are clones, and removing one of them frees nothing. Nothing where a block is the file's own, or the file
/// system does not tell. Safe on any thread.
[[nodiscard]] std::optional<SHA256Digest> sharedBlocks(int file);

}  // namespace vostrel
