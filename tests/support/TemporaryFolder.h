#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// A folder of its own for one test, its path free of links, removed with everything in it at the end, whatever
/// the modes.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern =
            std::filesystem::canonical(std::filesystem::temp_directory_path()) / "vostrel-test-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder could be made");
        folder = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        for (std::filesystem::recursive_directory_iterator entry(folder, ignored), end; !ignored && entry != end;
             entry.increment(ignored)) {
            if (entry->symlink_status(ignored).type() == std::filesystem::file_type::directory)
                std::filesystem::permissions(entry->path(), std::filesystem::perms::owner_all,
                                             std::filesystem::perm_options::add, ignored);
        }
        std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view relative) const { return folder / relative; }
    /// Makes a folder, and those above it, and returns its path.
    std::filesystem::path makeFolder(std::string_view relative) const {
        std::filesystem::create_directories(folder / relative);
        return folder / relative;
    }
    /// Makes a file, and the folders above it, and returns its path.
    std::filesystem::path makeFile(std::string_view relative, std::string_view content = "content") const {
        std::filesystem::create_directories((folder / relative).parent_path());
        std::ofstream(folder / relative, std::ios::binary) << content;
        return folder / relative;
    }
    /// Makes a link, and the folders above it, and returns its path.
    std::filesystem::path makeLink(std::string_view relative, const std::filesystem::path& target) const {
        std::filesystem::create_directories((folder / relative).parent_path());
        std::filesystem::create_symlink(target, folder / relative);
        return folder / relative;
    }
    [[nodiscard]] std::string read(std::string_view relative) const {
        std::ifstream file(folder / relative, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// The names directly in a folder, sorted.
    [[nodiscard]] std::vector<std::string> names(std::string_view relative = {}) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder / relative))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

private:
    std::filesystem::path folder;
};

}  // namespace vostrel
