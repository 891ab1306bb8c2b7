#pragma once

#include <compare>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace vostrel {

/// The path of a file, whose folder's part is kept once for all files that a search found there.
class FinderPath {
public:
    /// Of no file.
    FinderPath() = default;
    FinderPath(std::shared_ptr<const std::string> inFolder, std::string_view fileName)
        : folder(std::move(inFolder)), name(fileName) {}
    explicit FinderPath(const std::filesystem::path& path)
        : folder(std::make_shared<const std::string>(path.parent_path().native())), name(path.filename().native()) {}

    [[nodiscard]] std::filesystem::path full() const { return std::filesystem::path(inFolder()) / name; }
    /// The length of the whole path, in bytes.
    [[nodiscard]] std::size_t length() const { return full().native().size(); }

    friend bool operator==(const FinderPath& left, const FinderPath& right) {
        return left.name == right.name && left.inFolder() == right.inFolder();
    }
    friend std::strong_ordering operator<=>(const FinderPath& left, const FinderPath& right) {
        if (const auto order = left.inFolder() <=> right.inFolder(); order != 0) return order;
        return left.name <=> right.name;
    }

private:
    [[nodiscard]] std::string_view inFolder() const { return folder ? std::string_view(*folder) : std::string_view(); }

    std::shared_ptr<const std::string> folder;
    std::string name;
};

}  // namespace vostrel
