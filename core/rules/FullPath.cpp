#include "rules/FullPath.h"

#include <algorithm>
#include <system_error>

#include "filesystem/PathForm.h"

namespace vostrel {

namespace fs = std::filesystem;

namespace {

/// With the links of the part that exists resolved; as it is, where that cannot be done.
fs::path withoutLinks(const fs::path& path) {
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(path, error);
    return error ? path : resolved;
}

bool holdsAsWritten(const fs::path& outer, const fs::path& inner) {
    const auto outerForm = PathForm::of(outer);
    const auto innerForm = PathForm::of(inner);
    return outerForm && innerForm && outerForm->contains(*innerForm);
}

}  // namespace

bool isFullPath(const fs::path& path) {
    return path.is_absolute() && path.native().find('\0') == std::string::npos &&
           std::ranges::none_of(path, [](const fs::path& part) { return part == "." || part == ".."; });
}

bool holds(const fs::path& outer, const fs::path& inner) {
    return holdsAsWritten(outer, inner) || holdsAsWritten(withoutLinks(outer), withoutLinks(inner));
}

bool leadsThroughLink(const fs::path& path, std::initializer_list<fs::path> bases) {
    const auto* const base = std::ranges::find_if(bases, [&](const fs::path& each) {
        const fs::path below = path.lexically_relative(each);
        return !below.empty() && *below.begin() != "..";
    });
    fs::path place = base == bases.end() ? fs::path("/") : *base;
    for (const fs::path& part : path.lexically_relative(place)) {
        place /= part;
        std::error_code error;
        if (fs::is_symlink(fs::symlink_status(place, error))) return true;
    }
    return false;
}

}  // namespace vostrel
