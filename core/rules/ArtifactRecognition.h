#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "filesystem/FileIdentity.h"
#include "filesystem/FolderSource.h"
#include "rules/ArtifactFacts.h"
#include "rules/ArtifactLists.h"
#include "rules/ArtifactReader.h"
#include "rules/SkipReason.h"

namespace vostrel {

/// Tells the folders that a tool made from those that a person named alike.
///
/// It follows no link, leaves the volume never, and takes whatever it cannot read for a person's. One thread uses an
/// object.
class ArtifactRecognition {
public:
    ArtifactRecognition(const ArtifactRecognition&) = delete;
    ArtifactRecognition& operator=(const ArtifactRecognition&) = delete;
    /// `stopTest` ends the looking early; what was not looked at to its end is not recognised.
    ArtifactRecognition(FolderSource& from, std::optional<WalkVolume> onVolume, std::function<bool()> stopTest);

    /// The folder's identity if it is one of that kind, with these markers in the folder around it. `folder` is an
    /// absolute path without links. Lists the folder, and of what is in it only what a signature names.
    [[nodiscard]] std::optional<FileIdentity> recognise(const std::string& folder, ArtifactKind kind,
                                                        const ArtifactMarkers& beside);

    /// Whether a recognised folder holds nothing but what the tool put there and can make again, as far as that can be
    /// told: every file lies where the tool's files lie, there is no repository but where the tool clones them, and
    /// what its tool keeps a list of stands in that and was not changed since, as `ArtifactLists` says. Looks at
    /// everything in it, so it is asked only of a folder that would go.
    [[nodiscard]] bool canBeMadeAgain(const std::string& folder, ArtifactKind kind);

    /// Whether the folder, an absolute path without links, or one around it has a build folder's name with one of that
    /// kind's markers beside it, whatever else it holds. Yes when it cannot be seen what lies beside.
    [[nodiscard]] bool liesInBuildFolder(const std::filesystem::path& folder);

    /// The markers that lie directly in a folder; nothing when it could not be listed.
    [[nodiscard]] std::optional<ArtifactMarkers> markersIn(const std::string& folder);

    /// Why the last answer was no, where that was not seen but could not be.
    [[nodiscard]] std::optional<SkipReason> trouble() const { return reader.trouble(); }

private:
    [[nodiscard]] bool isMarked(const std::string& project, ArtifactKind kind);
    [[nodiscard]] bool holdsOnlyNamesOf(const ArtifactLayout::Place& own, const std::set<std::string>& copied,
                                        const ArtifactContent& content);
    /// What a folder is held against, apart from its tool's layout.
    struct Evidence {
        ArtifactKind kind;
        std::set<std::string> listed;
        std::optional<ArtifactLists::Installation> installation;
    };
    [[nodiscard]] bool holdsOnly(const ArtifactLayout::Place& own, const Evidence& evidence, const std::string& folder,
                                 const std::string& path, std::size_t depth);
    [[nodiscard]] bool goesOn();
    [[nodiscard]] bool shows(const ArtifactContent& content, const ArtifactSignature& signature);

    ArtifactReader reader;
    ArtifactLists lists;
    std::size_t namesHeld = 0;
};

}  // namespace vostrel
