#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vostrel {

/// A full path in the form in which places are compared: dots and doubled slashes resolved by their text alone, each
/// component composed (NFC) and case folded, and the data volume's own path taken off, so that "/Users/a/Library",
/// "/users/A/x/../library/" and "/System/Volumes/Data/Users/a/Library" are equal.
///
/// Making one reads nothing from the disk: where links may lead elsewhere, compare the resolved path's form as well.
class PathForm {
public:
    /// Nothing for a path that is empty, relative or holds a NUL.
    static std::optional<PathForm> of(const std::filesystem::path& path) { return ofText(path.native()); }
    /// The same without a path made of the text first, which takes it apart: for the many folders of a walk.
    static std::optional<PathForm> ofText(std::string_view path);

    /// "/users/a/library"; empty for the top of the disk.
    [[nodiscard]] const std::string& key() const { return folded; }
    [[nodiscard]] std::size_t componentCount() const;
    /// Whether the other place is this one or lies inside it.
    [[nodiscard]] bool contains(const PathForm& other) const;
    /// The path, or its first so many components, as it was spelled: "/Users/A".
    [[nodiscard]] std::filesystem::path spelledPath() const { return spelledPrefix(spelled.size()); }
    [[nodiscard]] std::filesystem::path spelledPrefix(std::size_t components) const;
    /// What comes after those components, as it was spelled: "/Library", or nothing.
    [[nodiscard]] std::string_view spelledBelow(std::size_t components) const;
    [[nodiscard]] std::string_view spelledName() const;
    /// The same of the key: "/library", or nothing.
    [[nodiscard]] std::string_view keyBelow(std::size_t components) const;

    friend bool operator==(const PathForm& left, const PathForm& right) { return left.folded == right.folded; }

private:
    std::string spelled;
    std::string folded;
};

/// Takes the next component off the front of a key or a relative path; empty when none is left.
std::string_view takeComponent(std::string_view& path);

}  // namespace vostrel

template <>
struct std::hash<vostrel::PathForm> {
    std::size_t operator()(const vostrel::PathForm& form) const { return std::hash<std::string>()(form.key()); }
};
