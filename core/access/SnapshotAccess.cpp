#include "access/SnapshotAccess.h"

#include <algorithm>
#include <span>
#include <utility>

#include "access/SnapshotPlaces.h"

namespace vostrel {

namespace {

using Region = PathGuards::Region;

AccessDecision blocked(UnreadableReason reason) {
    return {reason};
}

/// Whether a component ends where this text of a path does.
bool endsComponent(std::string_view text, std::size_t length) {
    return text.size() == length || text[length] == '/';
}

/// Whether the name of the place, or of a folder above it, ends in one of these extensions. Goes from dot to dot, for
/// most paths have few: a walk asks this of every folder.
bool hasExtension(const PathForm& form, std::span<const std::string_view> extensions) {
    const std::string_view key = form.key();
    for (auto dot = key.find('.'); dot != std::string_view::npos; dot = key.find('.', dot + 1)) {
        const std::string_view rest = key.substr(dot + 1);
        const bool isAny = std::ranges::any_of(extensions, [&](std::string_view extension) {
            return rest.starts_with(extension) && endsComponent(rest, extension.size());
        });
        if (isAny) return true;
    }
    return false;
}

/// Whether it is one of the folders at the top of the disk that hold other volumes, or lies in one.
bool liesWhereVolumesDo(const PathForm& form) {
    std::string_view rest = form.key();
    return std::ranges::find(snapshot_places::volumeHolders(), takeComponent(rest)) !=
           snapshot_places::volumeHolders().end();
}

}  // namespace

SnapshotAccess::SnapshotAccess(std::filesystem::path home, bool fullDiskAccess, PathGuards guards,
                               const MountTable& mounts)
    : homeFolder(std::move(home)), hasFullDiskAccess(fullDiskAccess), protectedPlaces(std::move(guards)) {
    const auto known = std::make_shared<Places>();
    MountTable others = mounts;
    auto homes = protectedPlaces.homeForms();
    if (const auto own = PathForm::of(homeFolder)) homes.push_back(*own);
    for (const PathForm& form : homes) {
        others = others.withoutThoseHolding(form);
        const auto folder = form.spelledPath();
        known->add(folder, homePlace);
        for (const auto place : snapshot_places::privacy())
            known->add(folder / place, privacyPlace);
        for (const auto place : snapshot_places::mediaLibraries())
            known->add(folder / place, mediaPlace);
    }
    for (const auto place : snapshot_places::measuredSystem())
        known->add(place, systemPlace);
    for (const auto& [path, form] : others.mounts()) {
        // What is mounted on a place of the system is measured with it.
        const auto place = known->marks.find(form.key());
        const bool isMeasured = place != known->marks.end() && (place->second & systemPlace) != 0;
        if (!isMeasured) known->add(path, mountPoint);
    }
    places = known;
}

AccessDecision SnapshotAccess::decision(const std::string& path) const {
    const auto form = PathForm::ofText(path);
    return form ? decision(*form) : blocked(UnreadableReason::couldNotRead);
}

AccessDecision SnapshotAccess::decision(const PathForm& form) const {
    const auto marks = places->marksOn(form.key());
    const bool inHome = (marks & homePlace) != 0;
    // The guards know of no other user's home inside this one.
    const Region region = inHome ? Region::open : protectedPlaces.regionOf(form);
    if (region == Region::othersHome) return blocked(UnreadableReason::otherHome);
    if (reachesByNumber(form)) return blocked(UnreadableReason::systemPlace);
    if ((marks & mountPoint) != 0) return blocked(UnreadableReason::otherDisk);
    if ((marks & systemPlace) != 0) return {};
    if (isInsideMediaLibrary(form)) return blocked(UnreadableReason::mediaLibrary);
    if (!hasFullDiskAccess && isInsideLibrary(form)) return blocked(UnreadableReason::needsFullDiskAccess);
    if (!inHome && liesWhereVolumesDo(form)) return blocked(UnreadableReason::otherDisk);
    if (region == Region::system) return blocked(UnreadableReason::systemPlace);
    if ((marks & mediaPlace) != 0) return blocked(UnreadableReason::mediaLibrary);
    if (!hasFullDiskAccess && (marks & privacyPlace) != 0) return blocked(UnreadableReason::needsFullDiskAccess);
    return {};
}

bool SnapshotAccess::isInsideLibrary(const PathForm& form) {
    return hasExtension(form, snapshot_places::privacyExtensions());
}

bool SnapshotAccess::isInsideMediaLibrary(const PathForm& form) {
    return hasExtension(form, snapshot_places::mediaLibraryExtensions());
}

bool SnapshotAccess::reachesByNumber(const PathForm& form) {
    constexpr std::string_view name = "/.vol";
    const std::string_view key = form.key();
    for (auto at = key.find(name); at != std::string_view::npos; at = key.find(name, at + 1)) {
        if (endsComponent(key.substr(at), name.size())) return true;
    }
    return false;
}

bool SnapshotAccess::isOnOtherVolume(const PathForm& form) const {
    return (places->marksOn(form.key()) & mountPoint) != 0;
}

SizeWalker SnapshotAccess::walker() const {
    SizeWalker made;
    made.access = [access = *this](const std::string& path) { return access.decision(path); };
    made.fullDiskAccess = hasFullDiskAccess;
    return made;
}

void SnapshotAccess::Places::add(const std::filesystem::path& place, Mark mark) {
    const auto form = PathForm::of(place);
    if (!form) return;
    marks[form->key()] |= mark;
    deepest = std::max(deepest, form->componentCount());
}

std::uint8_t SnapshotAccess::Places::marksOn(std::string_view key) const {
    std::uint8_t found = 0;
    std::size_t end = 0;
    for (std::size_t depth = 0; depth <= deepest; ++depth) {
        if (const auto place = marks.find(key.substr(0, end)); place != marks.end()) found |= place->second;
        if (end == key.size()) break;
        end = std::min(key.find('/', end + 1), key.size());
    }
    return found;
}

}  // namespace vostrel
