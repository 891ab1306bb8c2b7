#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "filesystem/FileIdentity.h"
#include "filesystem/FolderReader.h"
#include "filesystem/FolderSource.h"
#include "rules/ArtifactFacts.h"
#include "rules/SkipReason.h"

namespace vostrel {

/// Tells the folders that a tool made from those that a person named alike.
///
/// It follows no link, leaves the volume never, and takes whatever it cannot read for a person's. One thread uses an
/// object.
class ArtifactRecognition {
public:
    /// `mustStop` ends a listing early; what was not listed to its end is not recognised.
    ArtifactRecognition(FolderSource& from, std::optional<WalkVolume> onVolume, std::function<bool()> stopTest);

    /// The folder's identity if it is one of that kind, with these markers in the folder around it. `folder` is an
    /// absolute path without links. Lists the folder, and of what is in it only what a signature names.
    [[nodiscard]] std::optional<FileIdentity> recognise(const std::string& folder, ArtifactKind kind,
                                                        const ArtifactMarkers& beside);

    /// Whether a recognised folder holds nothing but what the tool put there and can make again, as far as that can be
    /// told: every file lies where the tool's files lie, there is no repository but where the tool clones them, every
    /// package stands in the list that its manager keeps, and every compiled Python module has its source beside the
    /// folder. Looks at everything in it, so it is asked only of a folder that would go.
    [[nodiscard]] bool canBeMadeAgain(const std::string& folder, ArtifactKind kind);

    /// Whether the folder, an absolute path without links, or one around it has a build folder's name with one of that
    /// kind's markers beside it, whatever else it holds. Yes when it cannot be seen what lies beside.
    [[nodiscard]] bool liesInBuildFolder(const std::filesystem::path& folder);

    /// Why the last answer was no, where that was not seen but could not be.
    [[nodiscard]] std::optional<SkipReason> trouble() const { return troubled; }

private:
    class Content;
    struct PackageList;

    [[nodiscard]] std::optional<Content> contentOf(const std::string& folder);
    [[nodiscard]] std::optional<Content> contentOf(const std::string& folder,
                                                   const std::optional<WalkVolume>& onVolume);
    [[nodiscard]] bool isMarked(const std::string& project, ArtifactKind kind);
    [[nodiscard]] bool isCacheFolderTag(const std::string& file);
    [[nodiscard]] std::optional<std::string> textOf(const std::string& file);
    [[nodiscard]] bool isFile(const std::string& path);
    [[nodiscard]] bool holdsOnly(const ArtifactLayout& own, const std::set<std::string>& listed,
                                 const std::string& folder, std::vector<std::string>& path);
    [[nodiscard]] bool holdsListedPackages(const std::string& folder);
    [[nodiscard]] bool holdsPackages(const std::string& folder, const std::string& place, const PackageList& installed);
    [[nodiscard]] bool holdsStoredPackages(const std::string& folder);
    [[nodiscard]] bool holdsOnlyLinks(const std::string& folder, const std::string& butFolder = {});
    [[nodiscard]] bool holdsPods(const std::string& folder);
    [[nodiscard]] bool holdsCompiledSources(const std::string& folder);
    [[nodiscard]] std::set<std::string> installedFiles(const std::string& environment);
    [[nodiscard]] bool shows(const Content& content, const ArtifactSignature& signature);

    FolderSource& source;
    FolderReader reader;
    std::optional<WalkVolume> volume;
    std::function<bool()> mustStop;
    std::optional<SkipReason> troubled;
};

}  // namespace vostrel
