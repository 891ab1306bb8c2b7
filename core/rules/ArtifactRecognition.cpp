#include "rules/ArtifactRecognition.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "platform/OwnedDescriptor.h"

namespace vostrel {

namespace {

using Form = ArtifactSignature::Form;

/// No signature needs more names, and their memory has an end.
constexpr std::size_t mostNames = 20'000;

// Lists of packages are a few million bytes at most; of a longer one only this is read, and the rest is in no list.
constexpr std::size_t longestList = 64U << 20U;

/// So many bytes of a file, or what could be read of them. Follows no link.
std::string beginningOf(const std::string& file, std::size_t most) {
    const OwnedDescriptor opened(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    std::string text;
    std::array<char, 65'536> piece{};
    while (opened.isOpen() && text.size() < most) {
        const auto got = ::read(opened.get(), piece.data(), std::min(piece.size(), most - text.size()));
        if (got <= 0) break;
        text.append(piece.data(), static_cast<std::size_t>(got));
    }
    return text;
}

std::set<std::string> namesAfter(std::string_view before, char after, std::string_view text) {
    std::set<std::string> names;
    for (auto at = text.find(before); at != std::string_view::npos; at = text.find(before, at)) {
        at += before.size();
        names.emplace(text.substr(at, std::min(text.find(after, at), text.size()) - at));
    }
    return names;
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
    [[nodiscard]] bool holdsOnly(const ArtifactFacts::Tool& tool) const {
        const auto isOf = [](const std::optional<Glob::Patterns>& own) {
            return [&own](const std::string& name) { return !own || own->matchesAny(name); };
        };
        const auto isOwn = [&](const std::string& name) {
            return isOf(tool.ownFiles)(name) || isOf(tool.ownFolders)(name);
        };
        return !holdsOther && std::ranges::all_of(files, isOf(tool.ownFiles)) &&
               std::ranges::all_of(folders, isOf(tool.ownFolders)) && std::ranges::all_of(links, isOwn);
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

std::optional<FileIdentity> ArtifactRecognition::recognise(const std::string& folder, ArtifactKind kind,
                                                           const ArtifactMarkers& beside) {
    const ArtifactFacts& facts = factsOf(kind);
    if ((facts.markerBits & beside).none()) return std::nullopt;
    const auto content = contentOf(folder);
    if (!content) return std::nullopt;
    for (std::size_t at = 0; at < facts.tools.size(); ++at) {
        const ArtifactFacts::Tool& tool = facts.tools[at];
        const bool isMarked = (tool.markerBits & ~beside).none();
        if (isMarked && content->holdsOnly(tool) &&
            std::ranges::any_of(facts.signatures[at].anyOf,
                                [&](const auto& signature) { return shows(*content, signature); })) {
            return content->identity;
        }
    }
    return std::nullopt;
}

bool ArtifactRecognition::canBeMadeAgain(const std::string& folder, ArtifactKind kind) {
    if (kind == ArtifactKind::pycache) return holdsCompiledSources(folder);
    if (kind == ArtifactKind::pods) return holdsPods(folder);
    if (kind != ArtifactKind::nodeModules) return true;
    const std::string list = folder + "/.package-lock.json";
    std::optional<std::set<std::string>> installed;
    if (isFile(list)) installed = namesAfter("\"node_modules/", '"', beginningOf(list, longestList));
    return holdsPackages(folder, {}, installed);
}

/// Folders with a dot are the package manager's own; those with an "@" hold packages in turn.
bool ArtifactRecognition::holdsPackages(const std::string& folder, const std::string& scope,
                                        const std::optional<std::set<std::string>>& installed) {
    const auto content = contentOf(folder);
    return content && std::ranges::all_of(content->folders, [&](const std::string& name) {
               const std::string path = folder + "/" + name;
               if (name.starts_with('.')) return true;
               if (name.starts_with('@') && scope.empty()) return holdsPackages(path, name + "/", installed);
               return isFile(path + "/package.json") && (!installed || installed->contains(scope + name));
           });
}

bool ArtifactRecognition::holdsPods(const std::string& folder) {
    constexpr std::array<std::string_view, 4> own{"Headers", "Local Podspecs", "Pods.xcodeproj",
                                                  "Target Support Files"};
    const auto content = contentOf(folder);
    // "- Name (1.0)", "- Name/Part (1.0)", or either in quotes.
    const std::string list = beginningOf(folder + "/Manifest.lock", longestList);
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
               return isFile(around + file.substr(0, file.find('.')) + ".py");
           });
}

bool ArtifactRecognition::isFile(const std::string& path) {
    const auto status = source.lookUp(path);
    return status && status->type == EntryType::file;
}

/// Nothing when it could not be listed to its end, or lies on another volume.
std::optional<ArtifactRecognition::Content> ArtifactRecognition::contentOf(const std::string& folder) {
    ListedFolder listed;
    auto notes = std::make_unique<Content>();
    Content& content = *notes;
    listed.notes = std::move(notes);
    listed.path = folder;
    listed.parentVolume = volume;
    reader.read(listed, mustStop);
    if (listed.result != ListedFolder::Result::listed) return std::nullopt;
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

bool isCacheFolderTag(const std::string& file) {
    constexpr std::string_view begins = "Signature: 8a477f597d28d172789f06886806bc55";
    return beginningOf(file, begins.size()) == begins;
}

}  // namespace vostrel
