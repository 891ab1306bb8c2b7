#pragma once

#include <string>

#include "rules/ArtifactReader.h"

namespace vostrel {

/// Holds the packages in `node_modules`, nested ones too, against the list that npm, Yarn or pnpm keeps there. It only
/// looks.
class NodePackages {
public:
    explicit NodePackages(ArtifactReader& from) : reader(from) {}

    /// Whether every package stands in the list, and all else are links or what Vite made of the packages.
    [[nodiscard]] bool areAllListed(const std::string& folder);

private:
    struct PackageList;

    [[nodiscard]] bool holdsOnlyOptimised(const std::string& cache);
    [[nodiscard]] bool holdsPackages(const std::string& folder, const std::string& place, const PackageList& installed);
    [[nodiscard]] bool holdsStoredPackages(const std::string& folder);
    [[nodiscard]] bool holdsNoFolders(const std::string& folder);
    [[nodiscard]] bool holdsOnlyLinks(const std::string& folder, const std::string& butFolder = {});

    ArtifactReader& reader;
};

}  // namespace vostrel
