#include "rules/NodePackages.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include "rules/JSONLookup.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

/// The members of an object inside a JSON text; none when it is none.
std::vector<JSONMember> membersOf(const std::string& text, std::string_view key) {
    const auto document = JSONCoding::decoder().decode(text);
    return document ? membersIn(&*document, key) : std::vector<JSONMember>();
}

/// Where npm has put packages of its own: not where it only put a link, nor what it unpacked from an archive on this
/// disk, which may be gone.
std::set<std::string> placesOfNpm(const std::string& lock) {
    std::set<std::string> places;
    for (const auto& [place, entry] : membersOf(lock, "packages")) {
        const auto* facts = entry.as<JSONObject>();
        if (facts != nullptr && facts->find("extraneous") == nullptr &&
            (facts->find("link") == nullptr || *facts->find("link") == JSONValue(false)) &&
            !textIn(&entry, "resolved").starts_with("file:"))
            places.insert(place);
    }
    return places;
}

/// "\"a@npm:1.0.0\":" and below it "    - \"node_modules/a\""; what is called a workspace, link or portal is linked.
std::set<std::string> placesOfYarn(const std::string& state) {
    constexpr std::string_view before = "    - \"";
    std::set<std::string> places;
    std::istringstream lines(state);
    bool isLinked = false;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(' ')) {
            // "a@workspace:a", and of a virtual one "a@virtual:0123#workspace:a".
            isLinked = line.contains("workspace:") || line.contains("link:") || line.contains("portal:");
        } else if (line.starts_with(before) && !isLinked) {
            places.insert(line.substr(before.size(), line.find('"', before.size()) - before.size()));
        }
    }
    return places;
}

/// "name@1.0.0" of every package in pnpm's lock file, whose keys are "  name@1.0.0:", "  '@scope/name@1.0.0(peer@1)':"
/// or "  /name@1.0.0:", in two of its sections.
std::set<std::string> packagesOfPnpm(const std::string& lock) {
    std::set<std::string> packages;
    std::istringstream lines(lock);
    bool namesPackages = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) continue;
        if (!line.starts_with(' ')) {
            namesPackages = line.starts_with("packages:") || line.starts_with("snapshots:");
            continue;
        }
        const auto start = line.find_first_not_of(' ');
        if (!namesPackages || start != 2) continue;
        const auto begin = line.find_first_not_of("'\"/", start);
        if (begin == std::string::npos) continue;
        const auto colon = line.rfind(':');
        const auto end = std::min(line.find_first_of("('\"", begin), colon);
        if (end != std::string::npos) packages.insert(line.substr(begin, end - begin));
    }
    return packages;
}

/// What pnpm adds to a version: nothing, the packages that it was installed beside, or a digest of their names.
bool namesPeers(std::string_view suffix) {
    constexpr std::size_t digestLength = 26;
    const bool isDigest = suffix.size() > digestLength && std::ranges::all_of(suffix.substr(1), [](char each) {
                              return std::isalnum(static_cast<unsigned char>(each)) != 0;
                          });
    return suffix.empty() || suffix.contains('@') || isDigest;
}

}  // namespace

/// The packages that a manager has noted down: where each lies ("node_modules/a/node_modules/b"), or merely what they
/// are called.
struct NodePackages::PackageList {
    std::set<std::string> places;
    std::set<std::string> names;

    [[nodiscard]] bool holds(const std::string& place, const std::string& name) const {
        return places.contains(place) || names.contains(name);
    }
};

bool NodePackages::areAllListed(const std::string& folder) {
    if (!holdsOnlyOptimised(folder + "/.vite")) return false;
    PackageList installed;
    if (reader.isFile(folder + "/.package-lock.json")) {
        installed.places = placesOfNpm(reader.textOf(folder + "/.package-lock.json").value_or(""));
    } else if (reader.isFile(folder + "/.yarn-integrity")) {
        // "left-pad@^1.0.0", "@scope/name@1.0.0"
        for (const auto& [pattern, origin] :
             membersOf(reader.textOf(folder + "/.yarn-integrity").value_or(""), "lockfileEntries"))
            if (!pattern.contains("@link:") && !pattern.contains("@file:"))
                installed.names.insert(pattern.substr(0, pattern.find('@', 1)));
    } else if (reader.isFile(folder + "/.yarn-state.yml")) {
        installed.places = placesOfYarn(reader.textOf(folder + "/.yarn-state.yml").value_or(""));
    } else {
        return holdsStoredPackages(folder);
    }
    return holdsPackages(folder, "node_modules/", installed);
}

/// Vite makes each of these folders at one time, and its list of what is in it at last.
bool NodePackages::holdsOnlyOptimised(const std::string& cache) {
    const auto content = reader.exists(cache) ? reader.contentOf(cache) : ArtifactContent();
    return content && std::ranges::all_of(content->folders, [&](const std::string& name) {
               const std::string folder = fmt::format("{}/{}", cache, name);
               const auto list = reader.statusOf(folder + "/_metadata.json");
               return !name.starts_with("deps") || (list && reader.isTrueThroughout(folder, [&](const auto& optimised) {
                   return optimised.newest <= list->modified;
               }));
           });
}

/// Folders with a dot are the package manager's own; those with an "@" hold packages in turn.
bool NodePackages::holdsPackages(const std::string& folder, const std::string& place, const PackageList& installed) {
    const auto content = reader.contentOf(folder);
    const bool isOutermost = place == "node_modules/";
    if (!content || (!isOutermost && !content->files.empty())) return false;
    return std::ranges::all_of(content->folders, [&](const std::string& name) {
        const std::string path = folder + "/" + name;
        if (name == ".bin") return holdsOnlyLinks(path);
        if (name.starts_with('.')) return isOutermost || name == ".cache";
        if (name.starts_with('@') && place.ends_with("node_modules/"))
            return holdsPackages(path, place + name + "/", installed);
        const auto own = place.rfind("node_modules/") + std::string_view("node_modules/").size();
        if (!reader.isFile(path + "/package.json") || !installed.holds(place + name, place.substr(own) + name))
            return false;
        const std::string inner = path + "/node_modules";
        return !reader.exists(inner) || holdsPackages(inner, place + name + "/node_modules/", installed);
    });
}

/// pnpm keeps every package in a folder of its own, "@scope+name@1.0.0_others", and links it from everywhere else.
bool NodePackages::holdsStoredPackages(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    const bool isLinked =
        content && std::ranges::all_of(content->folders, [&](const std::string& name) {
            return name.starts_with('.') || (name.starts_with('@') && holdsOnlyLinks(folder + "/" + name));
        });
    const auto store = reader.contentOf(folder + "/.pnpm");
    const auto listed = packagesOfPnpm(reader.textOf(folder + "/.pnpm/lock.yaml").value_or(""));
    return isLinked && store && std::ranges::all_of(store->folders, [&](const std::string& stored) {
               if (stored == "node_modules") return holdsOnlyLinks(folder + "/.pnpm/node_modules");
               const auto version = stored.find('@', 1);
               if (version == std::string::npos) return false;
               std::string name = stored.substr(0, version);
               std::ranges::replace(name, '+', '/');
               const std::string place = folder + "/.pnpm/" + stored;
               const auto own = reader.contentOf(place);
               const auto end = std::min(stored.find_first_of("_(", version), stored.size());
               const auto package = name + stored.substr(version, end - version);
               return namesPeers(stored.substr(end)) && own && own->files.empty() &&
                      own->folders == std::vector<std::string>{"node_modules"} && listed.contains(package) &&
                      holdsOnlyLinks(place + "/node_modules", name);
           });
}

bool NodePackages::holdsNoFolders(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    return content && content->folders.empty();
}

/// Links, scopes of links, and one folder.
bool NodePackages::holdsOnlyLinks(const std::string& folder, const std::string& butFolder) {
    const auto content = reader.contentOf(folder);
    return content && content->files.empty() && std::ranges::all_of(content->folders, [&](const std::string& name) {
               if (name == butFolder) return true;
               if (name == ".bin") return holdsNoFolders(folder + "/.bin");
               const bool isItsScope = name.starts_with('@') && butFolder.starts_with(name + "/");
               const std::string inner = isItsScope ? butFolder.substr(name.size() + 1) : std::string();
               return name.starts_with('@') && holdsOnlyLinks(folder + "/" + name, inner);
           });
}

}  // namespace vostrel
