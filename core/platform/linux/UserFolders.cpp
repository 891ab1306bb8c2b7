#include "platform/UserFolders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "platform/OwnedDescriptor.h"

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

constexpr std::string_view blanks = " \t";

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

std::string_view withoutBlanksAround(std::string_view text) {
    text = withoutLeadingBlanks(text);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// `"$HOME/Bilder"` or `"/data/Bilder"`, quoted as the desktop writes it: a backslash takes the next character as
/// it is, and the next quote ends it.
std::optional<std::filesystem::path> folderNamed(std::string_view value, const std::filesystem::path& home) {
    if (!value.starts_with('"')) return std::nullopt;
    value.remove_prefix(1);
    const bool inHome = value.starts_with("$HOME/");
    if (inHome) value.remove_prefix(std::string_view("$HOME").size());

    std::string plain;
    for (std::size_t at = 0; at < value.size() && value[at] != '"'; ++at) {
        if (value[at] == '\\' && at + 1 < value.size()) ++at;
        plain += value[at];
    }
    if (!plain.starts_with('/')) return std::nullopt;
    return inHome ? std::filesystem::path(home.native() + plain) : std::filesystem::path(plain);
}

/// What the file holds, up to as much as settings ever come to. Nothing is waited for: a pipe may lie in its place.
std::string beginningOf(const std::filesystem::path& path) {
    constexpr std::size_t most = 1 << 20;
    const OwnedDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts{};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) return {};
    std::string content(most, '\0');
    std::size_t length = 0;
    while (length < most) {
        const ssize_t count = ::read(file.get(), content.data() + length, most - length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        length += static_cast<std::size_t>(count);
    }
    content.resize(length);
    return content;
}

void addFoldersOf(const std::filesystem::path& settingsFolder, const std::filesystem::path& home,
                  std::vector<UserFolder>& folders) {
    std::istringstream settings(beginningOf(settingsFolder / "user-dirs.dirs"));
    for (std::string line; std::getline(settings, line);) {
        const std::string_view text(line);
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        const auto part = partNamed(withoutBlanksAround(text.substr(0, equals)));
        auto folder = folderNamed(withoutLeadingBlanks(text.substr(equals + 1)), home);
        if (part && folder) folders.push_back({*part, std::move(*folder)});
    }
}

}  // namespace

std::vector<UserFolder> userFolders(const std::filesystem::path& home, const Environment& environment) {
    std::vector<UserFolder> folders;
    addFoldersOf(home / ".config", home, folders);
    const auto named = environment.find("XDG_CONFIG_HOME");
    if (named != environment.end() && named->second.starts_with('/')) addFoldersOf(named->second, home, folders);
    return folders;
}

}  // namespace vostrel
