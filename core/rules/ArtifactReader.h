#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "filesystem/FileIdentity.h"
#include "filesystem/FolderReader.h"
#include "filesystem/FolderSource.h"
#include "rules/SkipReason.h"

namespace vostrel {

/// What one folder holds, by name; what merely looking at a folder leaves in it is passed over.
class ArtifactContent final : public FolderNotes {
public:
    void entry(const FolderEntry& entry) override;
    void clear() override { *this = {}; }

    /// One with files checked out, or a bare one.
    [[nodiscard]] bool isRepository() const;

    std::string path;
    FileIdentity identity;
    // Files and folders are sorted.
    std::vector<std::string> files;
    std::vector<std::string> folders;
    std::vector<std::string> links;
    /// The newest modification of the folder and of the files directly in it.
    Date newest;
    /// When the folder itself last changed in any way; being moved there changes nothing else.
    Date changed;
    /// Something that no tool puts there, or that could not be looked at.
    bool holdsOther = false;
};

/// Reads what a build folder's recognition goes by: folders, and the lists that tools keep.
///
/// It follows no link, downloads nothing, and remembers why it could not see something. One thread uses an object.
class ArtifactReader {
public:
    /// Deeper than any tool nests.
    static constexpr std::size_t deepest = 100;

    /// `stopTest` ends a listing early; what was not listed to its end is not there.
    ArtifactReader(FolderSource& from, std::optional<WalkVolume> onVolume, std::function<bool()> stopTest);

    /// Nothing when it could not be listed to its end, or lies on another volume.
    [[nodiscard]] std::optional<ArtifactContent> contentOf(const std::string& folder);
    /// The same wherever it lies.
    [[nodiscard]] std::optional<ArtifactContent> contentOnAnyVolume(const std::string& folder);
    /// Whether `test` says yes of a folder and all folders below it; also where nothing lies. No when one of them
    /// could not be listed or lies deeper than any tool nests.
    [[nodiscard]] bool isTrueThroughout(const std::string& folder,
                                        const std::function<bool(const ArtifactContent&)>& test);
    /// A file's text; nothing when it is not there, cannot be read or is longer than any list.
    [[nodiscard]] std::optional<std::string> textOf(const std::string& file);
    /// Whether two files hold the same; no when one of them is longer than any list.
    [[nodiscard]] bool areAlike(const std::string& file, const std::string& other);
    [[nodiscard]] bool beginsWith(const std::string& file, std::string_view text);
    [[nodiscard]] bool isFile(const std::string& path);
    /// What lies at a path, if anything does.
    [[nodiscard]] std::optional<FileStatus> statusOf(const std::string& path);
    /// Whether anything is there, or may be.
    [[nodiscard]] bool exists(const std::string& path);

    /// Whether to stop, which is then the trouble.
    [[nodiscard]] bool mustStop();

    void forgetTrouble() { troubled.reset(); }
    /// The last reason for which something was not seen.
    [[nodiscard]] std::optional<SkipReason> trouble() const { return troubled; }

private:
    [[nodiscard]] std::optional<ArtifactContent> contentOf(const std::string& folder,
                                                           const std::optional<WalkVolume>& onVolume);
    [[nodiscard]] bool isTrueBelow(const std::string& folder, const std::function<bool(const ArtifactContent&)>& test,
                                   std::size_t depth);

    FolderSource& source;
    FolderReader reader;
    std::optional<WalkVolume> volume;
    std::function<bool()> stops;
    std::optional<SkipReason> troubled;
};

}  // namespace vostrel
