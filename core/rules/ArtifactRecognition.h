#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "filesystem/FileIdentity.h"
#include "filesystem/FolderReader.h"
#include "filesystem/FolderSource.h"
#include "rules/ArtifactFacts.h"

namespace vostrel {

/// Tells the folders that a tool made from those that a person named alike.
///
/// It lists the folder, and of what is in it only the few folders that a signature names; it follows no link, leaves
/// the volume never, and takes whatever it cannot read for a person's. One thread uses an object.
class ArtifactRecognition {
public:
    /// `mustStop` ends a listing early; what was not listed to its end is not recognised.
    ArtifactRecognition(FolderSource& from, std::optional<WalkVolume> onVolume, std::function<bool()> stopTest);

    /// The folder's identity if it is one of that kind, with these markers in the folder around it. `folder` is an
    /// absolute path without links.
    [[nodiscard]] std::optional<FileIdentity> recognise(const std::string& folder, ArtifactKind kind,
                                                        const ArtifactMarkers& beside);

    /// Whether everything in a recognised folder can be made again, as far as that can be told: every Node package has
    /// its `package.json` and is in the list that npm keeps, every pod is in CocoaPods' list, every compiled Python
    /// module has its source beside the folder. Looks at each of them, so it is asked only of a folder that would go.
    [[nodiscard]] bool canBeMadeAgain(const std::string& folder, ArtifactKind kind);

private:
    class Content;

    [[nodiscard]] std::optional<Content> contentOf(const std::string& folder);
    [[nodiscard]] bool isFile(const std::string& path);
    [[nodiscard]] bool holdsPackages(const std::string& folder, const std::string& scope,
                                     const std::optional<std::set<std::string>>& installed);
    [[nodiscard]] bool holdsPods(const std::string& folder);
    [[nodiscard]] bool holdsCompiledSources(const std::string& folder);
    [[nodiscard]] bool shows(const Content& content, const ArtifactSignature& signature);

    FolderSource& source;
    FolderReader reader;
    std::optional<WalkVolume> volume;
    std::function<bool()> mustStop;
};

/// Whether the file begins as the published convention for cache folders demands. Follows no link.
[[nodiscard]] bool isCacheFolderTag(const std::string& file);

}  // namespace vostrel
