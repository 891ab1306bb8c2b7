#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vostrel {

/// The marked folders of a walk, by their normalised paths.
///
/// A key is the path component by component in NFC, case folded, NFC again, so that a mark meets its folder however
/// either is spelled.
class MarkIndex {
public:
    explicit MarkIndex(const std::map<std::string, std::vector<std::string>>& marks);

    static std::string keyOf(std::string_view path);
    /// Turns a folder's key into that of its entry `name`.
    static void appendName(std::string& key, std::string_view name);

    [[nodiscard]] bool isEmpty() const { return names.empty(); }
    /// Whether there is a mark at the folder or below it.
    [[nodiscard]] bool isHolder(const std::string& key) const { return holders.contains(key); }
    /// Names of the marks at a folder; nothing where there are none.
    [[nodiscard]] const std::vector<std::string>* at(const std::string& key) const;
    /// Names of the marks at a folder and below it.
    [[nodiscard]] std::vector<std::string> atOrBelow(const std::string& key) const;

private:
    std::map<std::string, std::vector<std::string>> names;
    std::set<std::string> holders;
};

}  // namespace vostrel
