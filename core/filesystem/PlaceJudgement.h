#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "filesystem/GuardException.h"
#include "filesystem/PathForm.h"
#include "filesystem/PlaceSurvey.h"
#include "filesystem/PlaceTree.h"

namespace vostrel {

/// What a path is judged as: what a rule cleans in, or what would go.
enum class Asked { root, item };

/// A `GuardException` in the terms of the places.
struct GuardPermission {
    PlaceTree::Mark tree;
    std::string treeDisplay;
    /// The folder's key below the tree; empty for the tree itself, where only screenshots are open.
    std::string folder;

    /// Nothing where the exception names no folder in its tree: it then permits nothing.
    static std::optional<GuardPermission> of(const GuardException& exception, const PlaceTree& places);

    [[nodiscard]] bool holdsOnlyScreenshots() const { return folder.empty(); }
    /// Whether this path is, as a root, or lies in, as an item, the permitted folder.
    [[nodiscard]] bool covers(const PlaceTree& places, const PathForm& form, const PlaceTree::Standing& standing,
                              Asked asked) const;
};

/// A path as it is judged: one of its forms, where that stands among the places, what it is judged as and how it is
/// shown.
struct JudgedPath {
    const PathForm& form;
    PlaceTree::Standing standing;
    Asked asked;
    std::string_view shown;
};

/// The sentence that refuses a path by the places alone, or nothing. When several reasons hold, the first in the order
/// disk, other home, media store, library file, tree, whole place is given.
[[nodiscard]] std::optional<std::string> placeRefusal(const PlaceSurvey& survey, JudgedPath judged,
                                                      const std::optional<GuardPermission>& permission = {});

namespace refusal {

/// The sentences of refusal; `shown` is the path as people are shown it.
[[nodiscard]] std::string inCloud(Asked asked, std::string_view shown);
[[nodiscard]] std::string wholeDisk(std::string_view shown);
[[nodiscard]] std::string insideTree(std::string_view tree);
[[nodiscard]] std::string asAWhole(std::string_view shown);
[[nodiscard]] std::string holdsPlace(std::string_view shown, std::string_view place);
[[nodiscard]] std::string unreadable(std::string_view shown);

inline constexpr std::string_view otherHome =
    "Vostrel never cleans inside another user's home folder, or a home folder on another disk.";
inline constexpr std::string_view mediaStore =
    "Vostrel never cleans the stores of Apple's Music, TV and Podcasts apps.";
inline constexpr std::string_view libraryFile =
    "Vostrel never cleans photo, music or video libraries, disk images or backups.";
inline constexpr std::string_view belowScreenshots =
    "Screenshots are cleaned only directly inside the screenshot folder.";

}  // namespace refusal

}  // namespace vostrel
