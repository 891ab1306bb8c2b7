#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "filesystem/WalkTotals.h"

namespace vostrel::test {

/// What a walk of real folders must come to, by the standard library's own walk.
inline WalkTotals sumOnDisk(const std::filesystem::path& root) {
    WalkTotals totals;
    std::set<ino_t> counted;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        struct stat found{};
        ::lstat(entry.path().c_str(), &found);
        if (S_ISLNK(found.st_mode)) {
            ++totals.linksSkipped;
        } else if (!S_ISDIR(found.st_mode) && counted.insert(found.st_ino).second) {
            ++totals.files;
            totals.allocatedBytes += found.st_blocks * 512;
        }
    }
    return totals;
}

}  // namespace vostrel::test
