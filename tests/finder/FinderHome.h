#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "finder/SystemFinderScanner.h"
#include "support/TemporaryFolder.h"

namespace vostrel {

/// A made-up home that is searched for small files.
struct FinderHome {
    TemporaryFolder home;
    FixedFullDiskAccess access{true};
    SystemFinderScanner scanner{.home = home.path(), .guards = PathGuards(home.path()), .fullDiskAccess = access};
    FinderCriteria criteria{.largeBytes = 60'000, .oldMonths = 12, .oldMinBytes = 20'000, .duplicateMinBytes = 1'000};
    /// Files made now are old then.
    Date later = Date::now() + std::chrono::hours(24 * 400);

    /// Whose content goes by `seed` alone.
    std::filesystem::path make(const std::string& path, std::size_t size, char seed = 'x') const {
        return home.makeFile(path, std::string(size, seed));
    }
    [[nodiscard]] FinderResult find(std::vector<std::string> roots = {},
                                    const std::function<bool()>& isCancelled = {}) {
        if (roots.empty()) roots.emplace_back();
        for (std::string& root : roots)
            root = (home / root).lexically_normal();
        if (roots.front().ends_with('/')) roots.front().pop_back();
        return scanner.scan({roots, criteria, later}, nullptr, isCancelled);
    }
    [[nodiscard]] std::string relative(const FinderPath& path) const {
        return path.full().lexically_relative(home.path());
    }
    template <class File>
    [[nodiscard]] std::vector<std::string> names(const std::vector<File>& files) const {
        std::vector<std::string> names;
        for (const File& file : files)
            names.push_back(relative(file.path));
        return names;
    }
};

}  // namespace vostrel
