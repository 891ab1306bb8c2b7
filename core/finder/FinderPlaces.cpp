#include "finder/FinderPlaces.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "base/UnicodeText.h"
#include "filesystem/PackageNames.h"
#include "platform/UserAccount.h"

namespace vostrel::finder_places {

namespace {

namespace fs = std::filesystem;

constexpr auto excludedOnMac = std::to_array<std::string_view>({".Trash", "Library"});
constexpr auto excludedOnLinux = std::to_array<std::string_view>({".local/share/Trash"});

constexpr auto repositoryNames =
    std::to_array<std::string_view>({".git", ".hg", ".svn", ".bzr", ".jj", "_darcs", "CVS"});

// What a repository without a working tree holds.
constexpr auto bareRepositoryNames = std::to_array<std::string_view>({"HEAD", "objects", "refs"});

// Beside these every folder whose name begins with a dot: programs keep there what is theirs.
constexpr auto toolsNames = std::to_array<std::string_view>({
    "$RECYCLE.BIN",
    "System Volume Information",
    "lost+found",
    "bower_components",
    "Carthage",
    "DerivedData",
    "dist-packages",
    "jspm_packages",
    "miniconda3",
    "anaconda3",
    "miniforge3",
    "node_modules",
    "Pods",
    "site-packages",
    "snap",
    "steamapps",
    "web_modules",
    "__pycache__",
});
constexpr auto toolsMarkers = std::to_array<std::string_view>({"CACHEDIR.TAG", "conda-meta", "pyvenv.cfg"});

// Folders whose content is made again, or cleared away, without anybody's asking; folded.
constexpr auto passingNames = std::to_array<std::string_view>({
    "build",
    "cache",
    "caches",
    "dist",
    "incoming",
    "obj",
    "out",
    "target",
    "temp",
    "tmp",
    "trash",
});

template <std::size_t count>
bool holds(const std::array<std::string_view, count>& list, std::string_view text) {
    return std::ranges::find(list, text) != list.end();
}

bool isTemporary(const fs::path& folder) {
    return folder == temporaryFolder() || folder == "/tmp" || folder == "/var/tmp" || folder == "/run" ||
           folder == "/dev";
}

bool holdsAny(const fs::path& folder, std::span<const std::string_view> names) {
    std::error_code unknown;
    return std::ranges::any_of(
        names, [&](std::string_view name) { return fs::exists(fs::symlink_status(folder / name, unknown)); });
}

bool isBareRepository(const fs::path& folder) {
    std::error_code unknown;
    return std::ranges::all_of(bareRepositoryNames, [&](std::string_view name) {
        return fs::exists(fs::symlink_status(folder / name, unknown));
    });
}

}  // namespace

std::span<const std::string_view> excluded(SystemKind system) {
    if (system == SystemKind::macOS) return excludedOnMac;
    return excludedOnLinux;
}

bool isRepositoryName(std::string_view folderName) {
    return holds(repositoryNames, folderName);
}

bool marksRepository(std::string_view entryName) {
    return holds(repositoryNames, entryName);
}

bool isToolsName(std::string_view folderName) {
    return folderName.starts_with('.') || holds(toolsNames, folderName);
}

bool marksTools(std::string_view entryName) {
    return holds(toolsMarkers, entryName);
}

std::optional<std::string_view> blockForRoot(const fs::path& root, const fs::path& home) {
    for (fs::path folder = root; folder != home && folder.has_relative_path(); folder = folder.parent_path()) {
        const std::string name = folder.filename();
        const bool isRepository =
            isRepositoryName(name) || holdsAny(folder, repositoryNames) || isBareRepository(folder);
        if (isRepository) return insideRepository;
        if (isPackageName(name)) return insidePackage;
        if (isToolsName(name) || holdsAny(folder, toolsMarkers)) return insideTools;
        if (isTemporary(folder)) return insideTemporary;
    }
    return std::nullopt;
}

bool mayVanishIn(const fs::path& folder, const fs::path& home) {
    for (fs::path around = folder; around != home && around.has_relative_path(); around = around.parent_path()) {
        const std::string name = around.filename();
        if (isTemporary(around) || isToolsName(name) || isPackageName(name) || holds(passingNames, folded(name)))
            return true;
    }
    return false;
}

}  // namespace vostrel::finder_places
