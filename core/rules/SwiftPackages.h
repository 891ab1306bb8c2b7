#pragma once

#include <map>
#include <set>
#include <string>

#include "rules/ArtifactReader.h"

namespace vostrel {

/// What Swift's package manager has fetched into a folder (`.build`, `SourcePackages`), by its `workspace-state.json`:
/// working copies in `checkouts`, the clones behind them in `repositories`, binaries in `artifacts`. It only looks.
class SwiftPackages {
public:
    SwiftPackages(ArtifactReader& from, std::string folder);

    /// Whether the three hold nothing but what the state lists: no working copy that a person edits, no clone of
    /// anything else, and none twice; and no binary changed since the state was written.
    [[nodiscard]] bool areAllListed();
    /// The files of the working copies that are as Git put them there, as paths below the folder.
    [[nodiscard]] std::set<std::string> untouchedFiles();

private:
    [[nodiscard]] bool holdsOnlyListedArtifacts();
    [[nodiscard]] bool isUnchanged(const std::string& folder);
    [[nodiscard]] bool isGitsOwn(const std::string& repository);
    [[nodiscard]] bool holdsOnlyReferences(const std::string& folder);
    [[nodiscard]] bool isClone(const std::string& name, std::set<std::string>& known);

    ArtifactReader& reader;
    std::string packages;
    /// Where each working copy came from, by its name.
    std::map<std::string, std::string> checkouts;
    /// "package/target" of each binary that was downloaded.
    std::set<std::string> artifacts;
};

}  // namespace vostrel
