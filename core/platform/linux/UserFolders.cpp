#include "platform/UserFolders.h"

#include <array>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace vostrel {

namespace {

std::optional<UserFolder::Part> partNamed(std::string_view key) {
    struct Row {
        std::string_view key;
        UserFolder::Part part;
    };
    constexpr std::array<Row, 7> rows{{{"XDG_DESKTOP_DIR", UserFolder::Part::desktop},
                                       {"XDG_DOCUMENTS_DIR", UserFolder::Part::documents},
                                       {"XDG_MUSIC_DIR", UserFolder::Part::music},
                                       {"XDG_PICTURES_DIR", UserFolder::Part::pictures},
                                       {"XDG_TEMPLATES_DIR", UserFolder::Part::templates},
                                       {"XDG_PUBLICSHARE_DIR", UserFolder::Part::publicShare},
                                       {"XDG_VIDEOS_DIR", UserFolder::Part::videos}}};
    for (const auto& row : rows) {
        if (row.key == key) return row.part;
    }
    return std::nullopt;
}

/// `"$HOME/Bilder"` or `"/data/Bilder"`, quoted as the desktop writes it: a backslash takes the next character as
/// it is.
std::optional<std::filesystem::path> folderNamed(std::string_view value, const std::filesystem::path& home) {
    const auto end = value.rfind('"');
    if (!value.starts_with('"') || end == 0) return std::nullopt;
    value = value.substr(1, end - 1);
    const bool inHome = value.starts_with("$HOME/");
    if (inHome) value.remove_prefix(std::string_view("$HOME").size());

    std::string plain;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] == '\\' && at + 1 < value.size()) ++at;
        plain += value[at];
    }
    if (!plain.starts_with('/')) return std::nullopt;
    return inHome ? std::filesystem::path(home.native() + plain) : std::filesystem::path(plain);
}

}  // namespace

std::vector<UserFolder> userFolders(const std::filesystem::path& home) {
    std::vector<UserFolder> folders;
    std::ifstream settings(home / ".config" / "user-dirs.dirs");
    for (std::string line; std::getline(settings, line);) {
        const std::string_view text(line);
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        const auto part = partNamed(text.substr(0, equals));
        auto folder = folderNamed(text.substr(equals + 1), home);
        if (part && folder) folders.push_back({*part, std::move(*folder)});
    }
    return folders;
}

}  // namespace vostrel
