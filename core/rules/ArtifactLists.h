#pragma once

#include <set>
#include <string>

#include "rules/ArtifactKind.h"
#include "rules/ArtifactReader.h"

namespace vostrel {

/// Holds a build folder against the lists that its tool keeps: what stands in none was put there by a person.
///
/// A list that cannot be read names nothing.
class ArtifactLists {
public:
    explicit ArtifactLists(ArtifactReader& from) : reader(from) {}

    /// Files that the tool can make again though they lie where anything may: paths below the folder.
    [[nodiscard]] std::set<std::string> listedFiles(const std::string& folder, ArtifactKind kind);

    /// Whether all stands in the tool's list that has to: packages, pods, checkouts, the sources of compiled modules;
    /// and whether no archive is of another version than the rest.
    [[nodiscard]] bool nameAll(const std::string& folder, ArtifactKind kind);

private:
    struct PackageList;

    [[nodiscard]] bool holdsListedPackages(const std::string& folder);
    [[nodiscard]] bool holdsPackages(const std::string& folder, const std::string& place, const PackageList& installed);
    [[nodiscard]] bool holdsStoredPackages(const std::string& folder);
    [[nodiscard]] bool holdsNoFolders(const std::string& folder);
    [[nodiscard]] bool holdsOnlyLinks(const std::string& folder, const std::string& butFolder = {});
    [[nodiscard]] bool holdsListedPods(const std::string& folder);
    [[nodiscard]] bool holdsListedCheckouts(const std::string& packages);
    [[nodiscard]] bool holdsListedCheckoutsOfProjects(const std::string& derivedData);
    [[nodiscard]] bool holdsCompiledSources(const std::string& folder);
    [[nodiscard]] bool holdsOneVersion(const std::string& archives);
    [[nodiscard]] std::set<std::string> installedFiles(const std::string& environment);
    void addFilesBelow(const std::string& folder, const std::string& as, std::size_t depth,
                       std::set<std::string>& files);

    ArtifactReader& reader;
};

}  // namespace vostrel
