#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// A folder of its own for one test, its path free of links, removed with everything in it at the end, whatever
/// the modes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view relative) const { return folder / relative; }
    /// Makes a folder, and those above it, and returns its path.
    std::filesystem::path makeFolder(std::string_view relative) const;
    /// Makes a file, and the folders above it, and returns its path.
    std::filesystem::path makeFile(std::string_view relative, std::string_view content = "content") const;
    /// Makes a link, and the folders above it, and returns its path.
    std::filesystem::path makeLink(std::string_view relative, const std::filesystem::path& target) const;
    [[nodiscard]] std::string read(std::string_view relative) const;
    /// The names directly in a folder, sorted.
    [[nodiscard]] std::vector<std::string> names(std::string_view relative = {}) const;

private:
    std::filesystem::path folder;
};

}  // namespace vostrel
