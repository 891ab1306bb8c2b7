#pragma once

#include <cstddef>
#include <expected>
#include <string>

namespace vostrel {

/// The bytes of an open file from where it stands to its end, but no more than `most`; or the error number.
[[nodiscard]] std::expected<std::string, int> readBytes(int openFile, std::size_t most);

}  // namespace vostrel
