#include "cli/GivenPath.h"

#include <system_error>

namespace vostrel::cli {

namespace fs = std::filesystem;

fs::path asGiven(const fs::path& path) {
    if (path.empty()) return path;
    std::error_code problem;
    const fs::path whole = path.is_absolute() ? path : fs::current_path(problem) / path;
    for (const fs::path& part : whole) {
        if (part == "." || part == "..") return fs::weakly_canonical(whole, problem);
    }
    return !whole.has_filename() && whole.has_relative_path() ? whole.parent_path() : whole;
}

}  // namespace vostrel::cli
