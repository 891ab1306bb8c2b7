#include "filesystem/PathGuards.h"

#include <algorithm>

#include "base/SystemError.h"
#include "base/UnicodeText.h"
#include "filesystem/ProtectedNames.h"
#include "filesystem/ScreenshotName.h"

namespace vostrel {

namespace {

using Refusal = std::optional<std::string>;
using Standing = PlaceTree::Standing;

/// The form of what lies in a folder; `below` may begin with a slash.
std::optional<PathForm> formBelow(const PathForm& folder, std::string_view below) {
    return PathForm::of(folder.spelledPath().native() + "/" + std::string(below));
}

/// The path without a slash at its end.
std::filesystem::path trimmedPath(const std::filesystem::path& path) {
    return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

bool hasLibraryFolder(std::string_view relativePath) {
    while (!relativePath.empty()) {
        if (folded(takeComponent(relativePath)) == "library") return true;
    }
    return false;
}

}  // namespace

PathGuards::PathGuards(const std::filesystem::path& home, const Environment& environment)
    : PathGuards(GuardSurroundings::of(home, environment)) {}

PathGuards::PathGuards(GuardSurroundings surroundings)
    : around(std::make_shared<const GuardSurroundings>(std::move(surroundings))),
      places(std::make_shared<const PlaceSurvey>(PlaceSurvey::of(*around))) {}

Refusal PathGuards::refusalForRoot(const std::filesystem::path& root,
                                   const std::optional<GuardException>& exception) const {
    auto judged = entry(root);
    const auto allowed = permission(exception);
    if (judged.forms.empty()) return refusal::unreadable(judged.display);
    if (auto refused = textRefusal(judged, Asked::root, allowed)) return refused;

    const auto real = resolvedForm(root);
    if (!real) return refusal::unreadable(judged.display);
    judged.forms = recognisedForms(*real, real->componentCount());
    if (auto refused = textRefusal(judged, Asked::root, allowed)) return refused;

    if (around->isMountPoint(real->spelledPath())) return refusal::wholeDisk(judged.display);
    if (around->isInICloud(root) || isDataless(root)) return refusal::inCloud(Asked::root, judged.display);
    return std::nullopt;
}

Refusal PathGuards::refusalForItem(const std::filesystem::path& item,
                                   const std::optional<GuardException>& exception) const {
    auto judged = entry(item);
    const auto allowed = permission(exception);
    if (judged.forms.empty()) return refusal::unreadable(judged.display);
    if (auto refused = textRefusal(judged, Asked::item, allowed)) return refused;

    const auto path = trimmedPath(item);
    const auto folder = resolvedForm(path.parent_path());
    const auto real = folder ? formBelow(*folder, path.filename().native()) : std::nullopt;
    if (!real) return refusal::unreadable(judged.display);
    judged.forms = recognisedForms(*real, folder->componentCount());
    if (auto refused = textRefusal(judged, Asked::item, allowed)) return refused;
    if (auto refused = aliasedBelowRefusal(*real, judged.display)) return refused;

    if (around->isMountPoint(path)) return refusal::wholeDisk(judged.display);
    if (around->isInICloud(item)) return refusal::inCloud(Asked::item, judged.display);
    return std::nullopt;
}

Refusal PathGuards::refusalForVerifiedItem(const std::filesystem::path& item,
                                           const std::optional<GuardException>& exception) const {
    const auto judged = entry(item);
    if (judged.forms.empty()) return refusal::unreadable(judged.display);
    if (auto refused = textRefusal(judged, Asked::item, permission(exception))) return refused;
    if (around->isInICloud(item)) return refusal::inCloud(Asked::item, judged.display);
    return std::nullopt;
}

PathGuards::WalkRoot PathGuards::walkRoot(const std::filesystem::path& root,
                                          const std::optional<GuardException>& exception) const {
    WalkRoot walk;
    walk.path = root;
    walk.known = entry(root).forms;
    if (walk.known.empty()) return walk;
    const auto real = resolvedForm(root);
    if (!real) return walk;
    walk.isReadable = true;
    for (auto& form : recognisedForms(*real, real->componentCount())) {
        if (std::ranges::find(walk.known, form) == walk.known.end()) walk.known.push_back(std::move(form));
    }
    for (const auto& mounted : around->mountAliases(real->spelledPath())) {
        const auto below = mounted.below.empty() ? std::nullopt : formBelow(*real, mounted.below);
        auto inHome = PathForm::of(mounted.path);
        if (!below || !inHome || !places->concernsAHome(*inHome)) continue;
        walk.aliases.push_back({std::string(below->keyBelow(real->componentCount())), *std::move(inHome)});
    }

    const auto allowed = permission(exception);
    for (const auto& form : walk.known) {
        auto standing = places->tree.standing(form);
        if (allowed && allowed->covers(places->tree, form, standing, Asked::root)) {
            standing.namedTree.reset();
            walk.screenshotsOnly |= allowed->holdsOnlyScreenshots();
        }
        walk.standings.push_back(standing);
    }
    const auto kind = protectedName(walk.known.front().spelledName());
    walk.protectedExtension = kind == ProtectedName::library || kind == ProtectedName::diskImage;
    walk.inICloud = around->isInICloud(root);
    walk.inCaches = std::ranges::all_of(walk.standings, &Standing::inCaches);
    walk.belowLibrary = std::ranges::any_of(walk.standings, &Standing::belowLibrary);
    walk.isClear = !walk.inICloud && !walk.screenshotsOnly && walk.aliases.empty() &&
                   std::ranges::all_of(walk.standings, &Standing::isClear);
    return walk;
}

Refusal PathGuards::refusalForWalkedItem(const WalkRoot& root, std::string_view folder, std::string_view name) const {
    if (root.isClear) return nameRefusal(root, folder, name);
    return refusalBelow(root, folder.empty() ? std::string(name) : std::string(folder) + "/" + std::string(name));
}

Refusal PathGuards::refusalForWalkedItem(const WalkRoot& root, std::string_view relativePath) const {
    const auto slash = relativePath.rfind('/');
    if (slash == std::string_view::npos) return refusalForWalkedItem(root, {}, relativePath);
    return refusalForWalkedItem(root, relativePath.substr(0, slash), relativePath.substr(slash + 1));
}

/// What is left to ask below a root that no protected place lies around or inside.
Refusal PathGuards::nameRefusal(const WalkRoot& root, std::string_view folder, std::string_view name) const {
    switch (protectedName(name)) {
        case ProtectedName::none:
            return std::nullopt;
        case ProtectedName::diskImage:
            if (root.inCaches) return std::nullopt;
            return std::string(refusal::libraryFile);
        case ProtectedName::library:
            return std::string(refusal::libraryFile);
        case ProtectedName::passwords:
            return refusal::insideTree(displayPath(root.path / folder / name));
        case ProtectedName::mediaStore:
            if (!root.belowLibrary && !hasLibraryFolder(folder)) return std::nullopt;
            return std::string(refusal::mediaStore);
    }
    return std::nullopt;
}

Refusal PathGuards::refusalBelow(const WalkRoot& root, std::string_view relativePath) const {
    const auto shown = displayPath(root.path / relativePath);
    if (!root.isReadable) return refusal::unreadable(shown);
    if (root.screenshotsOnly) {
        if (relativePath.find('/') != std::string_view::npos) return std::string(refusal::belowScreenshots);
        if (!isScreenshotName(relativePath)) return refusal::insideTree(displayPath(root.path));
    }
    for (std::size_t at = 0; at < root.standings.size(); ++at) {
        const auto form = formBelow(root.known[at], relativePath);
        if (!form) return refusal::unreadable(shown);
        const auto standing = places->tree.standingBelow(root.standings[at], form->keyBelow(root.standings[at].depth));
        if (auto refused = placeRefusal(*places, {*form, standing, Asked::item, shown})) return refused;
    }
    for (const auto& alias : root.aliases) {
        const auto form = formBelow(root.known.front(), relativePath);
        if (!form) return refusal::unreadable(shown);
        if (auto refused = aliasRefusal(alias, *form, root.known.front().componentCount(), shown)) return refused;
    }
    if (root.inICloud) return refusal::inCloud(Asked::item, shown);
    return std::nullopt;
}

std::optional<GuardException> PathGuards::exceptionFor(const std::filesystem::path& folder) const {
    auto exception = exceptionIn(folder);
    const auto allowed = permission(exception);
    if (!allowed || allowed->holdsOnlyScreenshots()) return std::nullopt;
    return exception;
}

std::optional<GuardException> PathGuards::screenshotException(const std::filesystem::path& folder) const {
    return exceptionIn(folder);
}

/// A folder that a link leads to from another place of the tree has no permission: it is not the one that was named.
std::optional<GuardException> PathGuards::exceptionIn(const std::filesystem::path& folder) const {
    const auto forms = entry(folder).forms;
    const auto real = resolvedForm(folder);
    if (forms.empty() || !real) return std::nullopt;
    const auto& given = forms.front();

    const auto named = places->tree.standing(given).namedTree;
    const auto reached = places->tree.standing(*real).namedTree;
    if (!named || !reached) return std::nullopt;
    const auto& display = places->tree.display(named->node);
    const bool isSameFolder = display == places->tree.display(reached->node) &&
                              given.keyBelow(named->depth) == real->keyBelow(reached->depth);
    if (!isSameFolder) return std::nullopt;
    const bool isDesktop = (places->tree.marks(named->node) & PlaceTree::desktopTree) != 0;
    return GuardException{isDesktop ? GuardException::Tree::desktop : GuardException::Tree::documents,
                          given.spelledPath(), display};
}

PathGuards::Region PathGuards::regionOf(const PathForm& form) const {
    const auto standing = places->tree.standingAmongPlaces(form);
    if (standing.inOthersHome) return Region::othersHome;
    return standing.systemTree ? Region::system : Region::open;
}

std::vector<PathForm> PathGuards::homeForms() const {
    auto forms = places->homeForms;
    forms.insert(forms.end(), places->accountForms.begin(), places->accountForms.end());
    return forms;
}

std::string PathGuards::displayPath(const std::filesystem::path& path) const {
    return shownPath(path, places->homeForms);
}

/// No forms for a path that cannot be judged, or when the home could not be.
PathGuards::Entry PathGuards::entry(const std::filesystem::path& path) const {
    Entry judged{displayPath(path), {}};
    auto form = PathForm::of(path);
    if (form && !places->homeForms.empty()) judged.forms.push_back(std::move(*form));
    return judged;
}

/// The form with its links resolved, as far as the path exists: what does not exist leads nowhere else. Nothing when
/// that could not be read.
std::optional<PathForm> PathGuards::resolvedForm(const std::filesystem::path& path) const {
    std::filesystem::path existing = trimmedPath(path);
    std::filesystem::path missing;
    for (;;) {
        const auto real = around->resolve(existing);
        if (real) return PathForm::of(*real / missing);
        if (!isMissing(real.error()) || !existing.has_relative_path()) return std::nullopt;
        missing = missing.empty() ? existing.filename() : existing.filename() / missing;
        existing = existing.parent_path();
    }
}

/// The form, and before it those that the path has by what it is: a place that is mounted a second time keeps its
/// identity, asked of the first `followed` components, and the mounts tell where else a folder lies. That matters only
/// near a home: there a person's things are, while the startup disk, mounted again among other disks, would close all.
std::vector<PathForm> PathGuards::recognisedForms(const PathForm& form, std::size_t followed) const {
    std::vector<PathForm> forms;
    for (std::size_t above = 1; above <= followed; ++above) {
        const auto facts = around->examine(form.spelledPrefix(above));
        if (!facts) continue;
        const auto place = places->recognised.find(facts->identity);
        if (place == places->recognised.end()) continue;
        const auto present = around->examine(place->second.spelledPath());
        if (!present || present->identity != facts->identity) continue;  // the number went to another folder since
        if (auto alias = formBelow(place->second, form.spelledBelow(above))) forms.push_back(std::move(*alias));
    }
    for (const auto& mounted : around->mountAliases(form.spelledPath())) {
        auto alias = mounted.below.empty() ? PathForm::of(mounted.path) : std::nullopt;
        if (alias && places->concernsAHome(*alias)) forms.push_back(*std::move(alias));
    }
    forms.push_back(form);
    return forms;
}

/// Of an item at or below a folder that is mounted in a home: what it is there.
Refusal PathGuards::aliasRefusal(const WalkRoot::Alias& alias, const PathForm& form, std::size_t rootDepth,
                                 const std::string& shown) const {
    const auto key = form.keyBelow(rootDepth);
    const bool isInside =
        key.starts_with(alias.keyBelow) && (key.size() == alias.keyBelow.size() || key[alias.keyBelow.size()] == '/');
    if (!isInside) return std::nullopt;
    const auto depth = rootDepth + static_cast<std::size_t>(std::ranges::count(alias.keyBelow, '/'));
    const auto inHome = formBelow(alias.form, form.spelledBelow(depth));
    if (!inHome) return refusal::unreadable(shown);
    return placeRefusal(*places, {*inHome, places->tree.standing(*inHome), Asked::item, shown});
}

/// Of an item that holds a folder which is mounted in a home: a protected one would be emptied with it.
Refusal PathGuards::aliasedBelowRefusal(const PathForm& item, const std::string& shown) const {
    for (const auto& mounted : around->mountAliases(item.spelledPath())) {
        const auto alias = mounted.below.empty() ? std::nullopt : PathForm::of(mounted.path);
        if (!alias || !places->concernsAHome(*alias)) continue;
        const auto place = displayPath(mounted.path);
        if (placeRefusal(*places, {*alias, places->tree.standing(*alias), Asked::item, place})) {
            return refusal::holdsPlace(shown, place);
        }
    }
    return std::nullopt;
}

std::optional<GuardPermission> PathGuards::permission(const std::optional<GuardException>& exception) const {
    return exception ? GuardPermission::of(*exception, places->tree) : std::nullopt;
}

Refusal PathGuards::textRefusal(const Entry& judged, Asked asked,
                                const std::optional<GuardPermission>& permission) const {
    for (const auto& form : judged.forms) {
        const auto standing = places->tree.standing(form);
        if (auto refused = placeRefusal(*places, {form, standing, asked, judged.display}, permission)) return refused;
    }
    return std::nullopt;
}

}  // namespace vostrel
