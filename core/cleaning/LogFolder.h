#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Date.h"

namespace vostrel {

/// One file found in the log folder.
struct LogFile {
    std::filesystem::path url;
    std::string name;
    std::int64_t size = 0;
    Date modified;
};

/// The log's own files, told by their names: regular files and no links. Others that lie there are none of its
/// business. A folder that cannot be read has none.

/// "2025-03-07.jsonl", oldest first.
[[nodiscard]] std::vector<LogFile> dayFilesIn(const std::filesystem::path& folder);

/// "0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.jsonl", in no order. There is none in a folder that is a link.
[[nodiscard]] std::vector<LogFile> detailFilesIn(const std::filesystem::path& folder);

}  // namespace vostrel
