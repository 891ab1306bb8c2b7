#include "rules/ArtifactRecognition.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <sstream>
#include <utility>
#include <vector>

#include "filesystem/PackageNames.h"
#include "platform/FileContent.h"
#include "platform/OwnedDescriptor.h"
#include "stores/JSONCoding.h"

namespace vostrel {

namespace {

using Form = ArtifactSignature::Form;

/// No tool puts more files into one folder, and their memory has an end.
constexpr std::size_t mostNames = 200'000;

// Lists of packages are a few million bytes at most.
constexpr std::size_t longestList = 64U << 20U;

// Deeper than any tool nests.
constexpr std::size_t deepest = 100;

/// So many bytes of a file, or all; nothing when it could not be read. Follows no link.
std::optional<std::string> beginningOf(const std::string& file, std::size_t most) {
    const OwnedDescriptor opened(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened.isOpen()) return std::nullopt;
    auto text = readBytes(opened.get(), most);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

std::set<std::string> namesAfter(std::string_view before, char after, std::string_view text) {
    std::set<std::string> names;
    for (auto at = text.find(before); at != std::string_view::npos; at = text.find(before, at)) {
        at += before.size();
        names.emplace(text.substr(at, std::min(text.find(after, at), text.size()) - at));
    }
    return names;
}

/// The members of an object inside a JSON text; none when it is none.
std::vector<JSONMember> membersOf(const std::string& text, std::string_view key) {
    const auto document = JSONCoding::decoder().decode(text);
    const auto* object = document ? document->as<JSONObject>() : nullptr;
    const JSONValue* value = object != nullptr ? object->find(key) : nullptr;
    const auto* inner = value != nullptr ? value->as<JSONObject>() : nullptr;
    return inner != nullptr ? inner->members() : std::vector<JSONMember>();
}

bool leavesNoTrace(std::string_view name) {
    return name == ".DS_Store";  // put anywhere by looking at a folder
}

}  // namespace

/// What one folder holds, by name.
class ArtifactRecognition::Content final : public FolderNotes {
public:
    void entry(const FolderEntry& entry) override {
        if (leavesNoTrace(entry.name)) return;
        const bool isPlain = entry.error == 0 && entry.mountStatus == 0 && files.size() + links.size() < mostNames;
        if (isPlain && entry.type == EntryType::file) {
            files.emplace_back(entry.name);
        } else if (isPlain && entry.type == EntryType::link) {
            links.emplace_back(entry.name);
        } else {
            holdsOther = true;
        }
    }
    void clear() override { *this = {}; }

    /// Whether every name is one that the tool gives.
    [[nodiscard]] bool holdsOnly(const ArtifactLayout& own) const {
        const auto isOwn = [&](const std::string& name) { return own.holdsFile(std::span(&name, 1), files); };
        return !holdsOther && std::ranges::all_of(files, isOwn) &&
               std::ranges::all_of(folders, [&](const std::string& name) { return own.holdsFolder(name); }) &&
               std::ranges::all_of(links,
                                   [&](const std::string& name) { return isOwn(name) || own.holdsFolder(name); });
    }
    /// One with files checked out, or a bare one.
    [[nodiscard]] bool isRepository() const {
        constexpr std::array<std::string_view, 7> marks{".git", ".hg", ".svn", ".bzr", ".jj", "_darcs", ".fslckout"};
        const auto holds = [&](std::string_view name) {
            return std::ranges::find(folders, name) != folders.end() || std::ranges::find(files, name) != files.end() ||
                   std::ranges::find(links, name) != links.end();
        };
        return std::ranges::any_of(marks, holds) || (holds("HEAD") && holds("objects") && holds("refs"));
    }

    std::string path;
    FileIdentity identity;
    std::vector<std::string> files;
    std::vector<std::string> folders;
    std::vector<std::string> links;
    /// Something that no tool puts there, or that could not be looked at.
    bool holdsOther = false;
};

ArtifactRecognition::ArtifactRecognition(FolderSource& from, std::optional<WalkVolume> onVolume,
                                         std::function<bool()> stopTest)
    : source(from), reader(from, ListingDetail::sizes), volume(onVolume), mustStop(std::move(stopTest)) {}

/// The packages that a manager has noted down: where each lies ("node_modules/a/node_modules/b"), or merely what they
/// are called.
struct ArtifactRecognition::PackageList {
    std::set<std::string> places;
    std::set<std::string> names;

    [[nodiscard]] bool holds(const std::string& place, const std::string& name) const {
        return places.contains(place) || names.contains(name);
    }
};

std::optional<FileIdentity> ArtifactRecognition::recognise(const std::string& folder, ArtifactKind kind,
                                                           const ArtifactMarkers& beside) {
    troubled.reset();
    const ArtifactFacts& facts = factsOf(kind);
    if ((facts.markerBits & beside).none()) return std::nullopt;
    const auto content = contentOf(folder);
    if (!content) return std::nullopt;
    for (std::size_t at = 0; at < facts.tools.size(); ++at) {
        const ArtifactFacts::Tool& tool = facts.tools[at];
        const bool isMarked = (tool.markerBits & ~beside).none();
        if (isMarked && content->holdsOnly(tool.own) &&
            std::ranges::any_of(facts.signatures[at].anyOf,
                                [&](const auto& signature) { return shows(*content, signature); })) {
            return content->identity;
        }
    }
    return std::nullopt;
}

bool ArtifactRecognition::canBeMadeAgain(const std::string& folder, ArtifactKind kind) {
    troubled.reset();
    std::set<std::string> listed;
    if (kind == ArtifactKind::venv) listed = installedFiles(folder);
    std::vector<std::string> path;
    const auto& tools = factsOf(kind).tools;
    if (std::ranges::none_of(tools, [&](const auto& tool) { return holdsOnly(tool.own, listed, folder, path); }))
        return false;
    if (kind == ArtifactKind::pycache) return holdsCompiledSources(folder);
    if (kind == ArtifactKind::pods) return holdsPods(folder);
    return kind != ArtifactKind::nodeModules || holdsListedPackages(folder);
}

bool ArtifactRecognition::liesInBuildFolder(const std::filesystem::path& folder) {
    std::filesystem::path around;
    for (const auto& component : folder) {
        const auto kind = kindOfFolder(component.native());
        if (kind && isMarked(around.native(), *kind)) return true;
        around /= component;
    }
    return false;
}

bool ArtifactRecognition::isMarked(const std::string& project, ArtifactKind kind) {
    const auto content = contentOf(project, std::nullopt);
    const ArtifactMarkers& wanted = factsOf(kind).markerBits;
    const auto marks = [&](const std::string& name) { return (markersOf(name) & wanted).any(); };
    return !content || std::ranges::any_of(content->files, marks) ||
           std::ranges::any_of(content->folders,
                               [&](const std::string& name) { return isPackageName(name) && marks(name); });
}

/// Whether every file lies where the tool's own lie, or is listed.
bool ArtifactRecognition::holdsOnly(const ArtifactLayout& own, const std::set<std::string>& listed,
                                    const std::string& folder, std::vector<std::string>& path) {
    const auto content = contentOf(folder);
    if (!content || content->holdsOther || path.size() > deepest) return false;
    if (content->isRepository() && !own.holdsRepository(path)) return false;
    std::string place;
    for (const std::string& name : path)
        place += name + "/";
    const auto holds = [&](const std::string& name, auto test) {
        path.push_back(name);
        const bool answer = test();
        path.pop_back();
        return answer;
    };
    const auto isOwn = [&](const std::string& name) {
        return holds(name, [&] { return listed.contains(place + name) || own.holdsFile(path, content->files); });
    };
    const auto isOwnLink = [&](const std::string& name) {  // to a package that lies elsewhere, say
        return isOwn(name) || (path.empty() && own.holdsFolder(name));
    };
    return std::ranges::all_of(content->files, isOwn) && std::ranges::all_of(content->links, isOwnLink) &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return holds(name, [&] { return holdsOnly(own, listed, folder + "/" + name, path); });
           });
}

bool ArtifactRecognition::holdsListedPackages(const std::string& folder) {
    PackageList installed;
    if (isFile(folder + "/.package-lock.json")) {
        for (const auto& [place, entry] : membersOf(textOf(folder + "/.package-lock.json").value_or(""), "packages")) {
            const auto* facts = entry.as<JSONObject>();
            if (facts != nullptr && facts->find("extraneous") == nullptr) installed.places.insert(place);
        }
    } else if (isFile(folder + "/.yarn-integrity")) {
        // "left-pad@^1.0.0", "@scope/name@1.0.0"
        for (const auto& [pattern, origin] :
             membersOf(textOf(folder + "/.yarn-integrity").value_or(""), "lockfileEntries"))
            installed.names.insert(pattern.substr(0, pattern.find('@', 1)));
    } else if (isFile(folder + "/.yarn-state.yml")) {
        installed.places = namesAfter("    - \"", '"', textOf(folder + "/.yarn-state.yml").value_or(""));
    } else {
        return holdsStoredPackages(folder);
    }
    return holdsPackages(folder, "node_modules/", installed);
}

/// Folders with a dot are the package manager's own; those with an "@" hold packages in turn.
bool ArtifactRecognition::holdsPackages(const std::string& folder, const std::string& place,
                                        const PackageList& installed) {
    const auto content = contentOf(folder);
    const bool isOutermost = place == "node_modules/";
    if (!content || (!isOutermost && !content->files.empty())) return false;
    return std::ranges::all_of(content->folders, [&](const std::string& name) {
        const std::string path = folder + "/" + name;
        if (name == ".bin") return holdsOnlyLinks(path);
        if (name.starts_with('.')) return isOutermost || name == ".cache";
        if (name.starts_with('@') && place.ends_with("node_modules/"))
            return holdsPackages(path, place + name + "/", installed);
        const auto own = place.rfind("node_modules/") + std::string_view("node_modules/").size();
        if (!isFile(path + "/package.json") || !installed.holds(place + name, place.substr(own) + name)) return false;
        const auto inner = source.lookUp(path + "/node_modules");
        return !inner || holdsPackages(path + "/node_modules", place + name + "/node_modules/", installed);
    });
}

/// pnpm keeps every package in a folder of its own, "@scope+name@1.0.0_others", and links it from everywhere else.
bool ArtifactRecognition::holdsStoredPackages(const std::string& folder) {
    const auto content = contentOf(folder);
    const bool isLinked =
        content && std::ranges::all_of(content->folders, [&](const std::string& name) {
            return name.starts_with('.') || (name.starts_with('@') && holdsOnlyLinks(folder + "/" + name));
        });
    const auto store = contentOf(folder + "/.pnpm");
    const std::string list = textOf(folder + "/.pnpm/lock.yaml").value_or("");
    return isLinked && store && std::ranges::all_of(store->folders, [&](const std::string& stored) {
               if (stored == "node_modules") return true;
               const auto version = stored.find('@', 1);
               if (version == std::string::npos) return false;
               std::string name = stored.substr(0, version);
               std::ranges::replace(name, '+', '/');
               const std::string place = folder + "/.pnpm/" + stored;
               const auto own = contentOf(place);
               const auto package = name + stored.substr(version, stored.find_first_of("_(", version) - version);
               return own && own->files.empty() && own->folders == std::vector<std::string>{"node_modules"} &&
                      list.contains(package) && holdsOnlyLinks(place + "/node_modules", name);
           });
}

/// Links, scopes of links, and one folder.
bool ArtifactRecognition::holdsOnlyLinks(const std::string& folder, const std::string& butFolder) {
    const auto content = contentOf(folder);
    return content && content->files.empty() && std::ranges::all_of(content->folders, [&](const std::string& name) {
               if (name == butFolder || name == ".bin") return true;
               const bool isItsScope = name.starts_with('@') && butFolder.starts_with(name + "/");
               const std::string inner = isItsScope ? butFolder.substr(name.size() + 1) : std::string();
               return name.starts_with('@') && holdsOnlyLinks(folder + "/" + name, inner);
           });
}

bool ArtifactRecognition::holdsPods(const std::string& folder) {
    constexpr std::array<std::string_view, 3> own{"Headers", "Pods.xcodeproj", "Target Support Files"};
    const auto content = contentOf(folder);
    // "- Name (1.0)", "- Name/Part (1.0)", or either in quotes.
    const std::string list = textOf(folder + "/Manifest.lock").value_or("");
    const auto isListed = [&](const std::string& name) {
        return list.contains("- " + name + " (") || list.contains("- " + name + "/") ||
               list.contains("- \"" + name + " (") || list.contains("- \"" + name + "/");
    };
    return content && std::ranges::all_of(content->folders, [&](const std::string& name) {
               return std::ranges::find(own, name) != own.end() || isListed(name);
           });
}

bool ArtifactRecognition::holdsCompiledSources(const std::string& folder) {
    const auto content = contentOf(folder);
    const std::string around = folder.substr(0, folder.rfind('/') + 1);
    return content && std::ranges::all_of(content->files, [&](const std::string& file) {
               return isFile(around + file.substr(0, file.find(".cpython-")) + ".py");
           });
}

/// Where the files of the packages lie that are installed in a Python environment, by their own lists.
std::set<std::string> ArtifactRecognition::installedFiles(const std::string& environment) {
    std::set<std::string> found;
    const auto versions = contentOf(environment + "/lib");
    if (!versions) return found;
    for (const std::string& version : versions->folders) {
        const std::string packages = fmt::format("lib/{}/site-packages/", version);
        const auto content = contentOf(environment + "/" + packages);
        if (!content) continue;
        for (const std::string& name : content->folders) {
            if (!name.ends_with(".dist-info")) continue;
            // "package/file.py,sha256=…,12"; outside of the packages "../../../bin/tool,…".
            std::istringstream lines(textOf(fmt::format("{}/{}{}/RECORD", environment, packages, name)).value_or(""));
            for (std::string line; std::getline(lines, line);) {
                const auto file = std::filesystem::path(packages + line.substr(0, line.find(',')));
                found.insert(file.lexically_normal().native());
            }
        }
    }
    return found;
}

/// Nothing when it is not there, cannot be read or is longer than any list.
std::optional<std::string> ArtifactRecognition::textOf(const std::string& file) {
    auto text = beginningOf(file, longestList);
    if (!text && isFile(file)) troubled = SkipReason::unreadable;
    return text && text->size() < longestList ? text : std::nullopt;
}

bool ArtifactRecognition::isFile(const std::string& path) {
    const auto status = source.lookUp(path);
    return status && status->type == EntryType::file;
}

std::optional<ArtifactRecognition::Content> ArtifactRecognition::contentOf(const std::string& folder) {
    return contentOf(folder, volume);
}

/// Nothing when it could not be listed to its end, or lies on another volume.
std::optional<ArtifactRecognition::Content> ArtifactRecognition::contentOf(const std::string& folder,
                                                                           const std::optional<WalkVolume>& onVolume) {
    ListedFolder listed;
    auto notes = std::make_unique<Content>();
    Content& content = *notes;
    listed.notes = std::move(notes);
    listed.path = folder;
    listed.parentVolume = onVolume;
    reader.read(listed, mustStop);
    if (listed.result != ListedFolder::Result::listed) {
        if (listed.result == ListedFolder::Result::stopped) {
            troubled = SkipReason::timedOut;
        } else if (listed.error != ENOENT) {
            troubled = SkipReason::unreadable;
        }
        return std::nullopt;
    }
    content.path = folder;
    content.identity = {listed.status.device, listed.status.inode};
    for (const auto& subfolder : listed.subfolders)
        content.folders.emplace_back(listed.nameOf(subfolder));
    return std::move(content);
}

bool ArtifactRecognition::shows(const Content& content, const ArtifactSignature& signature) {
    const auto isNamed = [&](const std::string& name) { return name == signature.argument; };
    const auto matches = [&](const std::string& name) { return signature.pattern.matchesAny(name); };
    const auto part = [&](const ArtifactSignature& each) { return shows(content, each); };
    switch (signature.form) {
        case Form::file:
            return std::ranges::any_of(content.files, isNamed) &&
                   (signature.argument != "CACHEDIR.TAG" || isCacheFolderTag(content.path + "/CACHEDIR.TAG"));
        case Form::folder:
            return std::ranges::any_of(content.folders, isNamed);
        case Form::fileMatching:
            return std::ranges::any_of(content.files, matches);
        case Form::folderMatching:
            return std::ranges::any_of(content.folders, matches);
        case Form::onlyFilesMatching:
            return !content.files.empty() && std::ranges::all_of(content.files, matches) && content.folders.empty() &&
                   content.links.empty() && !content.holdsOther;
        case Form::folderOfLinks:
            return std::ranges::any_of(content.folders, [&](const std::string& name) {
                if (name != signature.argument) return false;
                const auto inner = contentOf(content.path + "/" + name);
                return inner && !inner->links.empty() && inner->files.empty() && inner->folders.empty() &&
                       !inner->holdsOther;
            });
        case Form::inside:
            return std::ranges::any_of(content.folders, [&](const std::string& name) {
                if (!matches(name)) return false;
                const auto inner = contentOf(content.path + "/" + name);
                return inner && shows(*inner, signature.parts.front());
            });
        case Form::allOf:
            return std::ranges::all_of(signature.parts, part);
        case Form::anyOf:
            return std::ranges::any_of(signature.parts, part);
    }
    return false;
}

/// Whether the file begins as the published convention for cache folders demands.
bool ArtifactRecognition::isCacheFolderTag(const std::string& file) {
    constexpr std::string_view begins = "Signature: 8a477f597d28d172789f06886806bc55";
    const auto text = beginningOf(file, begins.size());
    if (!text) troubled = SkipReason::unreadable;
    return text == begins;
}

}  // namespace vostrel
