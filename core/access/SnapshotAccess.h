#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "access/MountTable.h"
#include "filesystem/AccessDecision.h"
#include "filesystem/PathForm.h"
#include "filesystem/PathGuards.h"
#include "filesystem/SizeWalker.h"

namespace vostrel {

/// Which places a walk that only looks may open: nothing private of another user, nothing that makes macOS ask the
/// user, no other disk, nothing of the system.
///
/// It goes by text alone, so it must be asked of a path as given and as resolved; a walk's own paths are both. A value
/// whose copies share what was built; any thread.
class SnapshotAccess {
public:
    /// Mounts that hold the home do not count: they are the disk that is measured.
    SnapshotAccess(std::filesystem::path home, bool fullDiskAccess, PathGuards guards, const MountTable& mounts);

    [[nodiscard]] AccessDecision decision(const std::string& path) const;
    [[nodiscard]] AccessDecision decision(const PathForm& form) const;

    /// Whether it is or lies in a photo, music or video library, by its name or one above it; of the Music or TV
    /// application.
    [[nodiscard]] static bool isInsideLibrary(const PathForm& form);
    [[nodiscard]] static bool isInsideMediaLibrary(const PathForm& form);
    /// Whether a folder above it reaches any file by its number.
    [[nodiscard]] static bool reachesByNumber(const PathForm& form);
    /// Whether it lies on another volume, as far as the mount table says.
    [[nodiscard]] bool isOnOtherVolume(const PathForm& form) const;

    /// A walker with these rules.
    [[nodiscard]] SizeWalker walker() const;

    [[nodiscard]] const std::filesystem::path& home() const { return homeFolder; }
    [[nodiscard]] bool fullDiskAccess() const { return hasFullDiskAccess; }
    [[nodiscard]] const PathGuards& guards() const { return protectedPlaces; }

private:
    enum Mark : std::uint8_t { homePlace = 1, privacyPlace = 2, mediaPlace = 4, systemPlace = 8, mountPoint = 16 };

    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    /// The places by their keys.
    struct Places {
        std::unordered_map<std::string, std::uint8_t, TextHash, std::equal_to<>> marks;
        std::size_t deepest = 0;  // in components

        void add(const std::filesystem::path& place, Mark mark);
        /// What the path is or lies in.
        [[nodiscard]] std::uint8_t marksOn(std::string_view key) const;
    };

    std::filesystem::path homeFolder;
    bool hasFullDiskAccess;
    PathGuards protectedPlaces;
    std::shared_ptr<const Places> places;
};

}  // namespace vostrel
