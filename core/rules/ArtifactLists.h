#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
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
    /// Whether a file is one of those, or the bytecode of one.
    [[nodiscard]] static bool isListed(const std::set<std::string>& files, const std::string& file);

    /// When a package manager was done with installing, where it notes that: what changed in a package since then, a
    /// person changed.
    [[nodiscard]] std::optional<Date> installed(const std::string& folder, ArtifactKind kind);
    /// Whether a folder of the build folder is one of a package. `folder` is relative and ends with "/".
    [[nodiscard]] static bool isInPackage(const std::string& folder, ArtifactKind kind);

    /// Whether all stands in the tool's list that has to: packages, pods, checkouts, the sources of compiled modules,
    /// reports of tests, what makes up a bundle; and whether no archive is of another name or version than the rest.
    [[nodiscard]] bool nameAll(const std::string& folder, ArtifactKind kind);

private:
    [[nodiscard]] bool holdsListedPods(const std::string& folder);
    [[nodiscard]] bool holdsOnlyLinks(const std::string& folder, std::size_t depth);
    [[nodiscard]] std::vector<std::string> foldersOfSwiftPackages(const std::string& folder, ArtifactKind kind);
    [[nodiscard]] bool holdsCompiledSources(const std::string& folder);
    [[nodiscard]] bool holdsOneVersion(const std::string& archives);
    [[nodiscard]] bool holdsNamedArchives(const std::string& folder);
    [[nodiscard]] bool holdsReportsOfTests(const std::string& folder);
    [[nodiscard]] std::set<std::string> installedFiles(const std::string& environment);
    void addFilesBelow(const std::string& folder, const std::string& as, std::size_t depth,
                       std::set<std::string>& files);

    ArtifactReader& reader;
};

}  // namespace vostrel
