#pragma once

#include <filesystem>
#include <string>

namespace vostrel {

/// What a map is of: the startup disk or one folder.
class SpaceScanTarget {
public:
    [[nodiscard]] static SpaceScanTarget bootVolume(std::string name) { return {"/", std::move(name), true}; }
    /// An absolute path; a slash at its end does not count.
    [[nodiscard]] static SpaceScanTarget folder(const std::filesystem::path& path);
    /// The startup disk where the chosen folder is its top, otherwise the folder.
    [[nodiscard]] static SpaceScanTarget choose(const std::filesystem::path& path, std::string bootVolumeName);

    [[nodiscard]] const std::filesystem::path& path() const { return place; }
    [[nodiscard]] const std::string& title() const { return name; }
    [[nodiscard]] bool isVolume() const { return isWholeDisk; }

    friend bool operator==(const SpaceScanTarget&, const SpaceScanTarget&) = default;

private:
    SpaceScanTarget(std::filesystem::path where, std::string what, bool isDisk)
        : place(std::move(where)), name(std::move(what)), isWholeDisk(isDisk) {}

    std::filesystem::path place;
    std::string name;
    bool isWholeDisk;
};

}  // namespace vostrel
