#include "filesystem/ProtectedNames.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/UnicodeText.h"

namespace vostrel {

namespace {

struct Extension {
    std::string_view text;
    ProtectedName kind;
};

// No archives of built applications: a preset cleans those, and Xcode makes them again.
constexpr auto extensions = std::to_array<Extension>({
    {"photoslibrary", ProtectedName::library}, {"photolibrary", ProtectedName::library},
    {"aplibrary", ProtectedName::library},     {"migratedphotolibrary", ProtectedName::library},
    {"lrcat", ProtectedName::library},         {"lrlibrary", ProtectedName::library},
    {"cocatalog", ProtectedName::library},     {"musiclibrary", ProtectedName::library},
    {"band", ProtectedName::library},          {"logicx", ProtectedName::library},
    {"tvlibrary", ProtectedName::library},     {"imovielibrary", ProtectedName::library},
    {"fcpbundle", ProtectedName::library},     {"theater", ProtectedName::library},
    {"sparsebundle", ProtectedName::library},  {"sparseimage", ProtectedName::library},
    {"backupbundle", ProtectedName::library},  {"backupdb", ProtectedName::library},
    {"tmbackup", ProtectedName::library},      {"vmwarevm", ProtectedName::library},
    {"pvm", ProtectedName::library},           {"utm", ProtectedName::library},
    {"vdi", ProtectedName::library},           {"vmdk", ProtectedName::library},
    {"vhd", ProtectedName::library},           {"vhdx", ProtectedName::library},
    {"qcow2", ProtectedName::library},         {"dmg", ProtectedName::diskImage},
    {"cdr", ProtectedName::diskImage},         {"iso", ProtectedName::diskImage},
    {"keychain", ProtectedName::passwords},    {"keychain-db", ProtectedName::passwords},
    {"kdbx", ProtectedName::passwords},
});

constexpr auto mediaStores = std::to_array<std::string_view>({
    "applemediaservices",
    "com.apple.applemediaservices",
    "com.apple.itunes",
    "com.apple.watchlistd",
    "com.apple.podcasts",
    "com.apple.medialibrary",
    "com.apple.mediastream",
    "group.com.apple.music",
    "group.com.apple.amp",
    "group.com.apple.tv",
    "group.com.apple.podcasts",
    "group.com.apple.itunes",
    "group.com.apple.medialibrary",
});

constexpr std::size_t longestExtension =
    std::ranges::max(extensions, {}, [](const Extension& row) { return row.text.size(); }).text.size();

/// The extensions by their length: few are ever compared.
constexpr auto byLength = [] {
    auto sorted = extensions;
    std::ranges::sort(sorted, {}, [](const Extension& row) { return row.text.size(); });
    return sorted;
}();

/// Where those of each length begin in `byLength`.
constexpr auto firstOfLength = [] {
    std::array<std::size_t, longestExtension + 2> first{};
    for (std::size_t length = 0; length < first.size(); ++length) {
        first[length] = static_cast<std::size_t>(
            std::ranges::count_if(extensions, [length](const Extension& row) { return row.text.size() < length; }));
    }
    return first;
}();

constexpr char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

/// Whether the text begins with these lower-case letters, in whatever case.
constexpr bool beginsWith(std::string_view text, std::string_view lowered) {
    if (text.size() < lowered.size()) return false;
    for (std::size_t at = 0; at < lowered.size(); ++at) {
        if (lower(text[at]) != lowered[at]) return false;
    }
    return true;
}

ProtectedName byExtension(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return ProtectedName::none;
    const auto extension = name.substr(dot + 1);
    if (extension.size() > longestExtension) return ProtectedName::none;
    for (auto row = firstOfLength[extension.size()]; row < firstOfLength[extension.size() + 1]; ++row) {
        if (beginsWith(extension, byLength[row].text)) return byLength[row].kind;
    }
    return ProtectedName::none;
}

/// The system makes several stores from one name ("com.apple.iTunesCloud") and may put the developer's team and
/// "groups." before it ("243LU875E5.groups.com.apple.podcasts").
bool isMediaStore(std::string_view name) {
    constexpr std::size_t teamLength = 10;
    constexpr std::string_view groups = "groups.";
    if (name.size() > teamLength && name[teamLength] == '.') name.remove_prefix(teamLength + 1);
    if (beginsWith(name, groups)) name.remove_prefix(groups.size());
    constexpr std::string_view initials = "acg";
    if (name.empty() || initials.find(lower(name.front())) == std::string_view::npos) return false;
    return std::ranges::any_of(mediaStores, [name](std::string_view store) { return beginsWith(name, store); });
}

ProtectedName judged(std::string_view name) {
    const auto kind = byExtension(name);
    if (kind != ProtectedName::none) return kind;
    return isMediaStore(name) ? ProtectedName::mediaStore : ProtectedName::none;
}

}  // namespace

ProtectedName protectedName(std::string_view name) {
    return isASCII(name) ? judged(name) : judged(folded(name));
}

}  // namespace vostrel
