#include "filesystem/PlaceJudgement.h"

#include <fmt/format.h>

#include <array>

#include "filesystem/ScreenshotName.h"

namespace vostrel {

namespace {

using Hit = PlaceTree::Hit;
using Standing = PlaceTree::Standing;

std::string display(const PlaceSurvey& survey, const PathForm& form, const Hit& place) {
    const auto& known = survey.tree.display(place.node);
    return known.empty() ? shownPath(form.spelledPrefix(place.depth), survey.homeForms) : known;
}

std::optional<Hit> innermostTree(const Standing& standing) {
    std::optional<Hit> innermost;
    for (const auto& hit :
         std::array{standing.homeTree, standing.namedTree, standing.accountTree, standing.systemTree}) {
        if (hit && (!innermost || hit->depth > innermost->depth)) innermost = hit;
    }
    return innermost;
}

/// A folder inside the Desktop or the Documents tree can be named, so the tree's own sentence says so.
std::string treeRefusal(const PlaceSurvey& survey, const JudgedPath& judged, const Hit& tree) {
    const auto shown = display(survey, judged.form, tree);
    const bool isNamedTree = judged.standing.namedTree == tree && tree.depth == judged.standing.depth;
    return isNamedTree && judged.asked == Asked::root ? refusal::asAWhole(shown) : refusal::insideTree(shown);
}

std::optional<std::string> holdingRefusal(const PlaceSurvey& survey, const JudgedPath& judged) {
    const auto held = survey.tree.heldPlace(judged.standing.node);
    if (!held && !judged.standing.isChildOfContainer) return std::nullopt;
    if (judged.asked == Asked::root) return refusal::asAWhole(judged.shown);
    const auto place = display(survey, judged.form, {held.value_or(PlaceTree::none), judged.standing.depth});
    return refusal::holdsPlace(judged.shown, place);
}

/// Opens the tree that the permission is for, where it covers the path.
void permit(const PlaceSurvey& survey, JudgedPath& judged, const GuardPermission& permission) {
    if (!permission.covers(survey.tree, judged.form, judged.standing, judged.asked)) return;
    auto& standing = judged.standing;
    // The screenshot folder may be the tree itself, which is a place.
    if (standing.namedTree && standing.namedTree->depth == standing.depth) standing.node = PlaceTree::none;
    standing.namedTree.reset();
}

}  // namespace

std::optional<GuardPermission> GuardPermission::of(const GuardException& exception, const PlaceTree& places) {
    const auto form = PathForm::of(exception.folder);
    if (!form) return std::nullopt;
    const auto standing = places.standing(*form);
    if (!standing.namedTree) return std::nullopt;
    const bool isDesktop = exception.tree == GuardException::Tree::desktop;
    return GuardPermission{isDesktop ? PlaceTree::desktopTree : PlaceTree::documentsTree, exception.treeDisplay,
                           std::string(form->keyBelow(standing.namedTree->depth))};
}

bool GuardPermission::covers(const PlaceTree& places, const PathForm& form, const Standing& standing,
                             Asked asked) const {
    if (!standing.namedTree) return false;
    const Hit hit = *standing.namedTree;
    if ((places.marks(hit.node) & tree) == 0 || places.display(hit.node) != treeDisplay) return false;

    auto below = form.keyBelow(hit.depth);
    if (holdsOnlyScreenshots()) {
        if (asked == Asked::root) return below.empty();
        takeComponent(below);
        return below.empty() && isScreenshotName(form.spelledName());
    }
    if (!below.starts_with(folder)) return false;
    return below.size() == folder.size() ? asked == Asked::root : below[folder.size()] == '/';
}

std::optional<std::string> placeRefusal(const PlaceSurvey& survey, JudgedPath judged,
                                        const std::optional<GuardPermission>& permission) {
    if (permission) permit(survey, judged, *permission);
    const Standing& standing = judged.standing;
    if (standing.depth == 0 || standing.isDisk) return refusal::wholeDisk(judged.shown);
    if (standing.inOthersHome) return std::string(refusal::otherHome);
    if (standing.inMediaStore) return std::string(refusal::mediaStore);
    if (standing.inLibraryFile) return std::string(refusal::libraryFile);
    if (const auto tree = innermostTree(standing)) return treeRefusal(survey, judged, *tree);
    return holdingRefusal(survey, judged);
}

namespace refusal {

std::string inCloud(Asked asked, std::string_view shown) {
    if (asked == Asked::root) return "Vostrel never cleans folders stored in iCloud.";
    return fmt::format("Vostrel never removes items stored in iCloud ({}).", shown);
}

std::string wholeDisk(std::string_view shown) {
    return fmt::format("Vostrel never removes a whole disk ({}).", shown);
}

std::string insideTree(std::string_view tree) {
    return fmt::format("Vostrel never cleans inside {}, because it holds your documents, settings or the system.",
                       tree);
}

std::string asAWhole(std::string_view shown) {
    return fmt::format("Vostrel will not clean {} as a whole. Choose a folder inside it.", shown);
}

std::string holdsPlace(std::string_view shown, std::string_view place) {
    return fmt::format("Vostrel never removes {}, because that would remove {}.", shown, place);
}

std::string unreadable(std::string_view shown) {
    return fmt::format("Vostrel could not check {}, so it leaves it alone.", shown);
}

}  // namespace refusal

}  // namespace vostrel
