#include "rules/ArtifactRecognition.h"

#include <algorithm>
#include <utility>

#include "filesystem/PackageNames.h"

namespace vostrel {

namespace {

using Form = ArtifactSignature::Form;

/// The published convention for cache folders.
constexpr std::string_view cacheFolderTagBegins = "Signature: 8a477f597d28d172789f06886806bc55";

std::optional<ArtifactMarkers> markersOn(const std::optional<ArtifactContent>& content) {
    if (!content) return std::nullopt;
    ArtifactMarkers markers;
    for (const std::string& name : content->files)
        markers |= markersOf(name);
    for (const std::string& name : content->folders) {
        if (isPackageName(name)) markers |= markersOf(name);
    }
    return markers;
}

}  // namespace

ArtifactRecognition::ArtifactRecognition(FolderSource& from, std::optional<WalkVolume> onVolume,
                                         std::function<bool()> stopTest)
    : reader(from, onVolume, std::move(stopTest)), lists(reader) {}

std::optional<FileIdentity> ArtifactRecognition::recognise(const std::string& folder, ArtifactKind kind,
                                                           const ArtifactMarkers& beside) {
    reader.forgetTrouble();
    const ArtifactFacts& facts = factsOf(kind);
    if ((facts.markerBits & beside).none()) return std::nullopt;
    const auto content = reader.contentOf(folder);
    if (!content) return std::nullopt;
    const auto copied = lists.namesOfCopies(folder, kind);
    for (std::size_t at = 0; at < facts.tools.size(); ++at) {
        const ArtifactFacts::Tool& tool = facts.tools[at];
        const bool isMarked = (tool.markerBits & ~beside).none();
        if (isMarked && holdsOnlyNamesOf(tool.own.top(), copied, *content) &&
            std::ranges::any_of(facts.signatures[at].anyOf,
                                [&](const auto& signature) { return shows(*content, signature); })) {
            return content->identity;
        }
    }
    return std::nullopt;
}

bool ArtifactRecognition::canBeMadeAgain(const std::string& folder, ArtifactKind kind) {
    reader.forgetTrouble();
    const Evidence evidence{kind, lists.listedFiles(folder, kind), lists.installation(folder, kind)};
    const auto holdsOnlyOwn = [&](const auto& tool) { return holdsOnly(tool.own.top(), evidence, folder, {}, 0); };
    return std::ranges::any_of(factsOf(kind).tools, holdsOnlyOwn) && lists.nameAll(folder, kind, evidence.listed);
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
    const auto markers = markersOn(reader.contentOnAnyVolume(project));
    return !markers || (*markers & factsOf(kind).markerBits).any();
}

std::optional<ArtifactMarkers> ArtifactRecognition::markersIn(const std::string& folder) {
    return markersOn(reader.contentOf(folder));
}

/// Whether every name directly in the folder is one that the tool gives, or copies.
bool ArtifactRecognition::holdsOnlyNamesOf(const ArtifactLayout::Place& own, const std::set<std::string>& copied,
                                           const ArtifactContent& content) {
    const ArtifactNeighbours beside{content.files, content.folders};
    const auto isOwn = [&](const std::string& name) {
        return goesOn() && (own.holdsFile(name, beside) || copied.contains(name));
    };
    const auto isOwnFolder = [&](const std::string& name) { return own.holdsFolder(name) || copied.contains(name); };
    return !content.holdsOther && std::ranges::all_of(content.files, isOwn) &&
           std::ranges::all_of(content.folders, isOwnFolder) &&
           std::ranges::all_of(content.links, [&](const auto& name) { return isOwn(name) || isOwnFolder(name); });
}

/// Whether every file in the folder, which is `path` below the build folder, lies where the tool's own lie, or is
/// listed, and nothing changed where packages were installed.
bool ArtifactRecognition::holdsOnly(const ArtifactLayout::Place& own, const Evidence& evidence,
                                    const std::string& folder, const std::string& path, std::size_t depth) {
    const auto content = reader.contentOf(folder);
    if (!content || content->holdsOther || depth > ArtifactReader::deepest) return false;
    if (content->isRepository() && !own.mayBeRepository()) return false;
    const bool isChanged = evidence.installation && evidence.installation->isOlderThan(*content);
    if (isChanged && ArtifactLists::staysAsInstalled(path, evidence.kind)) return false;
    const ArtifactNeighbours beside{content->files, content->folders};
    const auto isOwn = [&](const std::string& name) {
        return goesOn() && (own.holdsFile(name, beside) ||
                            (!evidence.listed.empty() && ArtifactLists::isListed(evidence.listed, path + name)));
    };
    const auto isOwnLink = [&](const std::string& name) {  // to a package that lies elsewhere, say
        return isOwn(name) || (depth == 0 && own.holdsFolder(name));
    };
    return std::ranges::all_of(content->files, isOwn) && std::ranges::all_of(content->links, isOwnLink) &&
           std::ranges::all_of(content->folders, [&](const std::string& name) {
               return holdsOnly(own.within(name), evidence, folder + "/" + name, path + name + "/", depth + 1);
           });
}

/// Asks whether to stop, every few hundred names: to hold one against a long layout takes a while.
bool ArtifactRecognition::goesOn() {
    constexpr std::size_t every = 256;
    return ++namesHeld % every != 0 || !reader.mustStop();
}

bool ArtifactRecognition::shows(const ArtifactContent& content, const ArtifactSignature& signature) {
    const auto isNamed = [&](const std::string& name) { return name == signature.argument; };
    const auto matches = [&](const std::string& name) { return signature.pattern.matchesAny(name); };
    const auto part = [&](const ArtifactSignature& each) { return shows(content, each); };
    switch (signature.form) {
        case Form::file:
            return std::ranges::any_of(content.files, isNamed) &&
                   (signature.argument != "CACHEDIR.TAG" ||
                    reader.beginsWith(content.path + "/CACHEDIR.TAG", cacheFolderTagBegins));
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
                const auto inner = reader.contentOf(content.path + "/" + name);
                return inner && !inner->links.empty() && inner->files.empty() && inner->folders.empty() &&
                       !inner->holdsOther;
            });
        case Form::inside:
            return std::ranges::any_of(content.folders, [&](const std::string& name) {
                if (!matches(name)) return false;
                const auto inner = reader.contentOf(content.path + "/" + name);
                return inner && shows(*inner, signature.parts.front());
            });
        case Form::allOf:
            return std::ranges::all_of(signature.parts, part);
        case Form::anyOf:
            return std::ranges::any_of(signature.parts, part);
    }
    return false;
}

}  // namespace vostrel
