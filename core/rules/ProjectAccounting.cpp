#include "rules/ProjectAccounting.h"

#include <algorithm>
#include <cerrno>
#include <ranges>
#include <utility>

#include "filesystem/PackageNames.h"

namespace vostrel {

namespace {

// Why a subfolder is not entered: up to the number of kinds, that it is a build folder of one; or this.
constexpr WalkDecision tooFarDown{100};
constexpr WalkDecision protectedPlace{101};

WalkDecision buildFolderOf(ArtifactKind kind) {
    return {static_cast<std::uint8_t>(static_cast<std::size_t>(kind) + 1)};
}

std::size_t bitOf(ArtifactKind kind) {
    return static_cast<std::size_t>(kind);
}

void note(ProjectNotes::Kinds& kinds, std::string_view name) {
    if (const auto kind = kindOfFolder(name)) kinds.set(bitOf(*kind));
}

std::string joined(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && !path.ends_with('/')) path += '/';
    return path += name;
}

/// Of an application, or one that a package manager installed.
bool isInPackage(const std::filesystem::path& folder) {
    return std::ranges::any_of(
        folder, [](const auto& component) { return component == "node_modules" || isPackageName(component.native()); });
}

const ProjectNotes& projectNotes(const FolderNotes& notes) {
    return dynamic_cast<const ProjectNotes&>(notes);
}

}  // namespace

void ProjectNotes::entry(const FolderEntry& entry) {
    if (entry.error != 0) {
        unreadableFile = entry.name;
    } else if (entry.type == EntryType::link) {
        note(links, entry.name);
    } else if (entry.type == EntryType::folder || entry.mountStatus != 0) {
        note(mounts, entry.name);
        holdsMount = true;
    } else {
        newest = std::max({newest, entry.modified, entry.changed, entry.added.value_or(entry.changed)});
        if (entry.type == EntryType::file) markers |= markersOf(entry.name);
    }
}

void ProjectNotes::subfolder(std::string_view name) {
    if (isPackageName(name)) markers |= markersOf(name);
}

void ProjectAccounting::prepare(const WalkedFolder& folder, const FolderNotes* parent, FolderNotes& notes) {
    auto& prepared = dynamic_cast<ProjectNotes&>(notes);
    if (parent == nullptr) {
        prepared.searches = !isInPackage(folder.path) && !recognising.liesInBuildFolder(folder.path);
        prepared.reach = questions.sourceDepth;
        return;
    }
    const ProjectNotes& around = projectNotes(*parent);
    prepared.path = joined(around.path, folder.name);
    prepared.searches = around.searches && !kindOfFolder(folder.name) && !isPackageName(folder.name);
    prepared.reach = reachBelow(around, folder.depth - 1);
}

std::size_t ProjectAccounting::reachBelow(const ProjectNotes& notes, std::size_t depth) const {
    const bool mayBeProject = notes.searches && notes.markers.any() && depth < questions.searchDepth;
    return mayBeProject ? std::max(notes.reach, depth + ProjectScanner::sourceWalkDepth) : notes.reach;
}

WalkDecision ProjectAccounting::decide(const WalkedFolder& folder, const FolderNotes& notes) {
    const ProjectNotes& around = projectNotes(notes);
    if (questions.guards.refusalForWalkedItem(questions.root, around.path, folder.name)) return protectedPlace;
    if (const auto kind = kindOfFolder(folder.name); kind && around.searches) {
        std::string path(folder.path);
        if (const auto identity = recognising.recognise(path, *kind, around.markers)) {
            recognised[std::move(path)] = *identity;
            return buildFolderOf(*kind);
        }
        if (const auto trouble = recognising.trouble()) undecided[std::move(path)] = *trouble;
    }
    const bool isSearched = folder.depth < questions.searchDepth;
    return isSearched || folder.depth <= reachBelow(around, folder.depth - 1) ? WalkDecision{} : tooFarDown;
}

void ProjectAccounting::leftOut(const WalkedFolder& folder, WalkDecision decision) {
    const Level& around = levels.back();
    const auto kind = wantedKind(folder.name, folder.depth);
    if (decision.leftOutFor == protectedPlace.leftOutFor) {
        if (!kind) return;
        leaveOut(folder.path, SkipReason::protectedPlace,
                 questions.guards.refusalForWalkedItem(questions.root, around.relativePath, folder.name));
    } else if (decision.leftOutFor == tooFarDown.leftOutFor) {
        if (kind) leaveOutUnrecognised(folder.path);
    } else if (kind) {
        addCandidate(folder, *kind);
    } else {
        recognised.erase(std::string(folder.path));
    }
}

void ProjectAccounting::addCandidate(const WalkedFolder& folder, ArtifactKind kind) {
    const auto seen = recognised.extract(std::string(folder.path));
    auto project = levels.rbegin();
    if (kind == ArtifactKind::pycache) {
        const auto upwards = levels | std::views::reverse;
        const auto python = std::ranges::find_if(upwards, &Level::isPythonProject);
        if (python != upwards.end()) project = python;
    }
    ProjectScanner::Candidate candidate;
    candidate.artifact = folder.path;
    candidate.kind = kind;
    candidate.project = project->path;
    candidate.identity = seen.mapped();
    candidate.parent = levels.back().identity;
    project->candidates.push_back(std::move(candidate));
}

void ProjectAccounting::couldNotOpen(const WalkedFolder& folder, int error) {
    if (folder.depth == 0) {
        found.rootError = error;
    } else {
        spoilUnreadable(folder.depth, folder.path);
    }
}

void ProjectAccounting::onOtherVolume(const WalkedFolder& folder) {
    if (folder.depth == 0) {
        found.rootError = EXDEV;
        return;
    }
    if (wantedKind(folder.name, folder.depth)) leaveOut(folder.path, SkipReason::otherVolume);
    spoil(folder.depth, SkipReason::otherVolume);
}

void ProjectAccounting::notReached(const WalkedFolder& folder) {
    const std::string path(folder.path);
    if (undecided.contains(path) && wantedKind(folder.name, folder.depth)) leaveOutUnrecognised(path);
}

void ProjectAccounting::listed(const WalkedFolder& folder, const FileStatus& status, FolderNotes& folderNotes,
                               ListingEnd end, int error) {
    const ProjectNotes& notes = projectNotes(folderNotes);
    if (questions.watcher) questions.watcher(folder.path);
    if (folder.depth > 0 && wantedKind(folder.name, folder.depth)) leaveOutUnrecognised(folder.path);
    Level level;
    level.identity = {status.device, status.inode};
    level.path = folder.path;
    level.relativePath = notes.path;
    level.depth = folder.depth;
    level.searches = notes.searches;
    level.isPythonProject = (notes.markers & pythonProjectMarkers()).any();
    levels.push_back(std::move(level));
    if (folder.depth == 0) found.root = levels.back().identity;

    Date newest = notes.newest;
    if (!questions.undated.contains(folder.path))
        newest = std::max({newest, status.modified, status.changed, status.added.value_or(status.changed)});
    forEachProjectAround(folder.depth, [&](Level& around) { around.newest = std::max(around.newest, newest); });
    leaveOut(levels.back(), notes.links, SkipReason::symlink);
    leaveOut(levels.back(), notes.mounts, SkipReason::otherVolume);
    if (notes.holdsMount) spoil(folder.depth, SkipReason::otherVolume);
    if (notes.unreadableFile) spoilUnreadable(folder.depth, joined(folder.path, *notes.unreadableFile));
    if (end != ListingEnd::failed) return;
    if (folder.depth == 0) found.rootError = error;
    spoilUnreadable(folder.depth, folder.path);
}

void ProjectAccounting::finished(const WalkedFolder& /*folder*/, bool stopped) {
    Level level = std::move(levels.back());
    levels.pop_back();
    if (stopped && !level.trouble) level.trouble = SkipReason::timedOut;
    for (auto& candidate : level.candidates) {
        if (level.trouble) {
            leaveOut(candidate.artifact.native(), *level.trouble);
        } else {
            candidate.newestSource = level.newest;
            found.candidates.push_back(std::move(candidate));
        }
    }
    if (levels.empty() && !level.trouble) newestOfRoot = level.newest;
}

std::optional<ArtifactKind> ProjectAccounting::wantedKind(std::string_view name, std::size_t depth) const {
    if (depth > questions.searchDepth || !levels.back().searches) return std::nullopt;
    const auto kind = kindOfFolder(name);
    return kind && questions.kinds.contains(*kind) ? kind : std::nullopt;
}

void ProjectAccounting::leaveOut(std::string_view path, SkipReason reason, std::optional<std::string> refusal) {
    found.leftOut.push_back({path, reason, std::move(refusal)});
}

void ProjectAccounting::leaveOutUnrecognised(std::string_view path) {
    const auto known = undecided.extract(std::string(path));
    leaveOut(path, known ? known.mapped() : SkipReason::noToolSignature);
}

void ProjectAccounting::leaveOut(const Level& level, ProjectNotes::Kinds kinds, SkipReason reason) {
    for (const auto& [kind, storedName, folderName] : artifactKinds) {
        if (kinds.test(bitOf(kind)) && wantedKind(folderName, level.depth + 1))
            leaveOut(joined(level.path, folderName), reason);
    }
}

template <class Action>
void ProjectAccounting::forEachProjectAround(std::size_t depth, Action action) {
    for (Level& level : levels | std::views::reverse) {
        if (depth - level.depth > ProjectScanner::sourceWalkDepth) return;
        action(level);
    }
}

void ProjectAccounting::spoil(std::size_t depth, SkipReason reason) {
    forEachProjectAround(depth, [reason](Level& level) {
        if (!level.trouble) level.trouble = reason;
    });
}

void ProjectAccounting::spoilUnreadable(std::size_t depth, std::filesystem::path path) {
    found.unreadable.push_back(std::move(path));
    spoil(depth, SkipReason::unreadable);
}

}  // namespace vostrel
