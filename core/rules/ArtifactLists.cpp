#include "rules/ArtifactLists.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

// Deeper than any tool nests.
constexpr std::size_t deepest = 100;

constexpr std::array<std::string_view, 4> archiveExtensions{".jar", ".war", ".jar.original", ".war.original"};

const JSONValue* valueIn(const JSONValue* value, std::string_view key) {
    const auto* object = value != nullptr ? value->as<JSONObject>() : nullptr;
    return object != nullptr ? object->find(key) : nullptr;
}

std::string textIn(const JSONValue* value, std::string_view key) {
    const JSONValue* inner = valueIn(value, key);
    const auto* text = inner != nullptr ? inner->as<std::string>() : nullptr;
    return text != nullptr ? *text : std::string();
}

/// The members of an object inside a JSON text; none when it is none.
std::vector<JSONMember> membersOf(const std::string& text, std::string_view key) {
    const auto document = JSONCoding::decoder().decode(text);
    const JSONValue* value = document ? valueIn(&*document, key) : nullptr;
    const auto* inner = value != nullptr ? value->as<JSONObject>() : nullptr;
    return inner != nullptr ? inner->members() : std::vector<JSONMember>();
}

/// Where npm has put packages of its own: not where it only put a link.
std::set<std::string> placesOfNpm(const std::string& lock) {
    std::set<std::string> places;
    for (const auto& [place, entry] : membersOf(lock, "packages")) {
        const auto* facts = entry.as<JSONObject>();
        if (facts != nullptr && facts->find("extraneous") == nullptr &&
            (facts->find("link") == nullptr || *facts->find("link") == JSONValue(false)))
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

/// The checkouts that Swift's package manager made, and of those alone that no person edits: the last part of where
/// each came from, without ".git", by its own name.
std::map<std::string, std::string> checkoutsOf(const std::string& workspaceState) {
    std::map<std::string, std::string> checkouts;
    const auto document = JSONCoding::decoder().decode(workspaceState);
    const JSONValue* dependencies = document ? valueIn(valueIn(&*document, "object"), "dependencies") : nullptr;
    const auto* list = dependencies != nullptr ? dependencies->as<JSONArray>() : nullptr;
    if (list == nullptr) return checkouts;
    for (const JSONValue& dependency : *list) {
        const std::string state = textIn(valueIn(&dependency, "state"), "name");
        if (state != "sourceControlCheckout" && state != "checkout") continue;
        const JSONValue* package = valueIn(&dependency, "packageRef");
        std::string origin = textIn(package, "location");
        if (origin.empty()) origin = textIn(package, "path");
        while (origin.ends_with('/'))
            origin.pop_back();
        if (origin.ends_with(".git")) origin.resize(origin.size() - std::string_view(".git").size());
        checkouts[textIn(&dependency, "subpath")] = origin.substr(origin.find_last_of("/:") + 1);
    }
    return checkouts;
}

/// "name-0123abcd", the clone of a checkout.
bool isCloneOf(const std::map<std::string, std::string>& checkouts, const std::string& name) {
    constexpr std::size_t digits = 8;
    if (name.size() <= digits + 1 || name[name.size() - digits - 1] != '-') return false;
    const auto isDigit = [](char each) { return std::isxdigit(static_cast<unsigned char>(each)) != 0; };
    return std::ranges::all_of(std::string_view(name).substr(name.size() - digits), isDigit) &&
           std::ranges::any_of(checkouts, [origin = name.substr(0, name.size() - digits - 1)](const auto& checkout) {
               return checkout.second == origin;
           });
}

/// Name and version of an archive, "app-1.0-sources.jar", whatever part of the build it holds.
std::pair<std::string, std::string> versionOf(std::string_view archive) {
    constexpr std::array<std::string_view, 6> parts{"-sources", "-javadoc",       "-plain",
                                                    "-all",     "-test-fixtures", "-tests"};
    for (const std::string_view part : parts) {
        if (!archive.ends_with(part)) continue;
        archive.remove_suffix(part.size());
        break;
    }
    const auto isDigit = [](char each) { return std::isdigit(static_cast<unsigned char>(each)) != 0; };
    constexpr std::string_view separators = "-_";
    for (auto at = archive.find_first_of(separators); at != std::string_view::npos;
         at = archive.find_first_of(separators, at + 1)) {
        auto version = archive.substr(at + 1);
        if (version.starts_with('v') || version.starts_with('V')) version.remove_prefix(1);
        if (!version.empty() && isDigit(version.front()))
            return {std::string(archive.substr(0, at)), std::string(version)};
    }
    return {std::string(archive), {}};
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
struct ArtifactLists::PackageList {
    std::set<std::string> places;
    std::set<std::string> names;

    [[nodiscard]] bool holds(const std::string& place, const std::string& name) const {
        return places.contains(place) || names.contains(name);
    }
};

std::set<std::string> ArtifactLists::listedFiles(const std::string& folder, ArtifactKind kind) {
    if (kind == ArtifactKind::venv) return installedFiles(folder);
    std::set<std::string> copied;
    if (kind == ArtifactKind::gradleBuild) {
        const std::string project = folder.substr(0, folder.rfind('/'));
        for (const std::string part : {"main", "test"})
            addFilesBelow(fmt::format("{}/src/{}/resources", project, part), "resources/" + part, 0, copied);
    }
    return copied;
}

bool ArtifactLists::nameAll(const std::string& folder, ArtifactKind kind) {
    switch (kind) {
        case ArtifactKind::nodeModules:
            return holdsListedPackages(folder);
        case ArtifactKind::swiftBuild:
            return holdsListedCheckouts(folder);
        case ArtifactKind::xcodeDerivedData:
            return holdsListedCheckoutsOfProjects(folder);
        case ArtifactKind::pods:
            return holdsListedPods(folder);
        case ArtifactKind::pycache:
            return holdsCompiledSources(folder);
        case ArtifactKind::target:
            return holdsOneVersion(folder);
        case ArtifactKind::gradleBuild:
            return !reader.exists(folder + "/libs") || holdsOneVersion(folder + "/libs");
        default:
            return true;
    }
}

bool ArtifactLists::holdsListedPackages(const std::string& folder) {
    PackageList installed;
    if (reader.isFile(folder + "/.package-lock.json")) {
        installed.places = placesOfNpm(reader.textOf(folder + "/.package-lock.json").value_or(""));
    } else if (reader.isFile(folder + "/.yarn-integrity")) {
        // "left-pad@^1.0.0", "@scope/name@1.0.0"
        for (const auto& [pattern, origin] :
             membersOf(reader.textOf(folder + "/.yarn-integrity").value_or(""), "lockfileEntries"))
            if (!pattern.contains("@link:")) installed.names.insert(pattern.substr(0, pattern.find('@', 1)));
    } else if (reader.isFile(folder + "/.yarn-state.yml")) {
        installed.places = placesOfYarn(reader.textOf(folder + "/.yarn-state.yml").value_or(""));
    } else {
        return holdsStoredPackages(folder);
    }
    return holdsPackages(folder, "node_modules/", installed);
}

/// Folders with a dot are the package manager's own; those with an "@" hold packages in turn.
bool ArtifactLists::holdsPackages(const std::string& folder, const std::string& place, const PackageList& installed) {
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
bool ArtifactLists::holdsStoredPackages(const std::string& folder) {
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

bool ArtifactLists::holdsNoFolders(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    return content && content->folders.empty();
}

/// Links, scopes of links, and one folder.
bool ArtifactLists::holdsOnlyLinks(const std::string& folder, const std::string& butFolder) {
    const auto content = reader.contentOf(folder);
    return content && content->files.empty() && std::ranges::all_of(content->folders, [&](const std::string& name) {
               if (name == butFolder) return true;
               if (name == ".bin") return holdsNoFolders(folder + "/.bin");
               const bool isItsScope = name.starts_with('@') && butFolder.starts_with(name + "/");
               const std::string inner = isItsScope ? butFolder.substr(name.size() + 1) : std::string();
               return name.starts_with('@') && holdsOnlyLinks(folder + "/" + name, inner);
           });
}

bool ArtifactLists::holdsListedPods(const std::string& folder) {
    constexpr std::array<std::string_view, 3> own{"Headers", "Pods.xcodeproj", "Target Support Files"};
    const auto content = reader.contentOf(folder);
    // "- Name (1.0)", "- Name/Part (1.0)", or either in quotes.
    const std::string list = reader.textOf(folder + "/Manifest.lock").value_or("");
    const auto isListed = [&](const std::string& name) {
        const bool isUsedWhereItLies =
            list.contains("\n  " + name + ":\n    :path:") || list.contains("\n  \"" + name + "\":\n    :path:");
        if (isUsedWhereItLies) return false;
        return list.contains("- " + name + " (") || list.contains("- " + name + "/") ||
               list.contains("- \"" + name + " (") || list.contains("- \"" + name + "/");
    };
    return content && std::ranges::all_of(content->folders, [&](const std::string& name) {
               return std::ranges::find(own, name) != own.end() || isListed(name);
           });
}

bool ArtifactLists::holdsListedCheckoutsOfProjects(const std::string& derivedData) {
    const auto content = reader.contentOf(derivedData);
    if (!content) return false;
    std::vector<std::string> projects = content->folders;
    projects.emplace_back(".");
    return std::ranges::all_of(projects, [&](const std::string& project) {
        const std::string packages = fmt::format("{}/{}/SourcePackages", derivedData, project);
        return !reader.exists(packages) || holdsListedCheckouts(packages);
    });
}

/// Anything else in "checkouts" and "repositories" may be a repository with work in it.
bool ArtifactLists::holdsListedCheckouts(const std::string& packages) {
    const auto listed = checkoutsOf(reader.textOf(packages + "/workspace-state.json").value_or(""));
    const auto holdsOnly = [&](const std::string& folder, auto isListed) {
        if (!reader.exists(folder)) return true;
        const auto content = reader.contentOf(folder);
        return content && content->files.empty() && content->links.empty() &&
               std::ranges::all_of(content->folders, isListed);
    };
    return holdsOnly(packages + "/checkouts", [&](const std::string& name) { return listed.contains(name); }) &&
           holdsOnly(packages + "/repositories", [&](const std::string& name) { return isCloneOf(listed, name); });
}

bool ArtifactLists::holdsCompiledSources(const std::string& folder) {
    const auto content = reader.contentOf(folder);
    const std::string around = folder.substr(0, folder.rfind('/') + 1);
    return content && std::ranges::all_of(content->files, [&](const std::string& file) {
               return reader.isFile(around + file.substr(0, file.find(".cpython-")) + ".py");
           });
}

/// Whether all archives are of one version: an older one may be a release that cannot be built again.
bool ArtifactLists::holdsOneVersion(const std::string& archives) {
    const auto content = reader.contentOf(archives);
    if (!content) return false;
    std::map<std::string, std::string> versions;
    return std::ranges::all_of(content->files, [&](const std::string& file) {
        const auto extension = std::ranges::find_if(archiveExtensions, [&](auto each) { return file.ends_with(each); });
        if (extension == archiveExtensions.end()) return true;
        const auto [name, version] = versionOf(std::string_view(file).substr(0, file.size() - extension->size()));
        return versions.try_emplace(name, version).first->second == version;
    });
}

/// Where the files of the packages lie that are installed in a Python environment, by their own lists.
std::set<std::string> ArtifactLists::installedFiles(const std::string& environment) {
    std::set<std::string> found;
    const auto versions = reader.contentOf(environment + "/lib");
    if (!versions) return found;
    for (const std::string& version : versions->folders) {
        const std::string packages = fmt::format("lib/{}/site-packages/", version);
        const auto content = reader.contentOf(fmt::format("{}/{}", environment, packages));
        if (!content) continue;
        for (const std::string& name : content->folders) {
            if (!name.ends_with(".dist-info")) continue;
            // "package/file.py,sha256=…,12"; outside of the packages "../../../bin/tool,…".
            std::istringstream lines(
                reader.textOf(fmt::format("{}/{}{}/RECORD", environment, packages, name)).value_or(""));
            for (std::string line; std::getline(lines, line);) {
                const auto file = std::filesystem::path(packages + line.substr(0, line.find(',')));
                found.insert(file.lexically_normal().native());
            }
        }
    }
    return found;
}

/// Adds the paths of all files in a folder and below it, as they are below another one.
void ArtifactLists::addFilesBelow(const std::string& folder, const std::string& as, std::size_t depth,
                                  std::set<std::string>& files) {
    if (depth > deepest || !reader.exists(folder)) return;
    const auto content = reader.contentOf(folder);
    if (!content) return;
    for (const std::string& file : content->files)
        files.insert(fmt::format("{}/{}", as, file));
    for (const std::string& inner : content->folders)
        addFilesBelow(fmt::format("{}/{}", folder, inner), fmt::format("{}/{}", as, inner), depth + 1, files);
}

}  // namespace vostrel
