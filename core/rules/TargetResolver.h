#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileStatus.h"
#include "rules/PathSource.h"
#include "rules/ResolvedRoot.h"
#include "rules/RuleTarget.h"
#include "stores/DefaultsReading.h"

namespace vostrel {

class PathGuards;
class PresetCatalog;
struct Preset;

/// Why a target stands for no folders: one sentence, and what kind of failure planning makes of it.
struct ResolveError {
    enum class Kind {
        rootMissing,        ///< the target names no folder by its full path
        rootUnreadable,     ///< the user's temporary folder could not be read
        settingUnreadable,  ///< another application's setting names no folder that can be trusted
        protectedRoot,      ///< the path guards refuse the folder
        presetUnknown,
    };

    Kind kind = Kind::rootMissing;
    std::string sentence;

    friend bool operator==(const ResolveError&, const ResolveError&) = default;
};

/// Turns a rule's target into root folders. The path guards have the last word on each of them.
///
/// It looks at settings, links and the temporary folder but opens no root. A value that refers to the guards and the
/// settings' reader, which outlive it; any thread.
class TargetResolver {
public:
    struct User {
        std::uint32_t uid = 0;
        /// The user's temporary folder.
        std::filesystem::path tempBase;
    };

    static constexpr const char* xcodeDomain = "com.apple.dt.Xcode";
    static constexpr const char* derivedDataKey = "IDECustomDerivedDataLocation";
    static constexpr const char* screencaptureDomain = "com.apple.screencapture";
    static constexpr const char* screencaptureLocationKey = "location";
    static constexpr const char* derivedDataSettingName = "Xcode's DerivedData location";
    static constexpr const char* screenshotSettingName = "the screenshot location";

    /// For the user this process runs as.
    TargetResolver(std::filesystem::path itsHome, const DefaultsReading& itsDefaults, const PathGuards& itsGuards);
    TargetResolver(std::filesystem::path itsHome, const DefaultsReading& itsDefaults, const PathGuards& itsGuards,
                   User itsUser);

    /// The folders of the target, in its order, whether they exist or not; or why there are none, never a part of them.
    [[nodiscard]] std::expected<std::vector<ResolvedRoot>, ResolveError> resolve(const RuleTarget& target,
                                                                                 const PresetCatalog& catalog) const;

    /// The same for the places of one preset.
    [[nodiscard]] std::expected<std::vector<ResolvedRoot>, ResolveError> resolve(const Preset& preset) const;

    /// The sentence that refuses a root which others could fill: it must be a folder of the user's that neither group
    /// nor others may write to. The status is that of the folder as it was opened; nothing when it could not be read.
    [[nodiscard]] std::optional<std::string> ownershipRefusal(const std::filesystem::path& root,
                                                              const std::optional<FileStatus>& status) const;

    /// Whether a link leads to the folder. What leads to the home or the temporary folder does not count.
    [[nodiscard]] bool isLinked(const std::filesystem::path& folder) const;

    /// Whether the folder is the home folder's Library or lies inside it.
    [[nodiscard]] bool isInLibrary(const std::filesystem::path& folder) const;

private:
    using Root = std::expected<ResolvedRoot, ResolveError>;
    using Roots = std::expected<std::vector<ResolvedRoot>, ResolveError>;

    [[nodiscard]] Roots resolveFolder(const FolderTarget& target) const;
    [[nodiscard]] Roots resolveProjectScan(const ProjectScanTarget& target) const;
    [[nodiscard]] Roots resolveSource(const PathSource& source) const;
    [[nodiscard]] Roots resolveTemporaryFolder(const UserTempSource& source) const;
    [[nodiscard]] Root resolveScreenshotFolder() const;
    [[nodiscard]] Root chosenScreenshotFolder(const std::string& value) const;
    [[nodiscard]] Root resolveDerivedData() const;
    [[nodiscard]] Root chosenDerivedData(const std::string& value) const;

    /// A root at that path, with what the path alone tells.
    [[nodiscard]] ResolvedRoot rootAt(std::filesystem::path path) const;
    /// The same for a folder that the user named, which may lie in the Desktop or Documents tree.
    [[nodiscard]] ResolvedRoot namedRootAt(std::filesystem::path path) const;
    [[nodiscard]] ResolvedRoot screenshotRootAt(std::filesystem::path path) const;
    [[nodiscard]] ResolvedRoot homeTrash() const;

    std::filesystem::path home;
    const DefaultsReading* defaults;
    const PathGuards* guards;
    User user;
};

}  // namespace vostrel
