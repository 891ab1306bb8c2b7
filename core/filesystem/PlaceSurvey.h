#pragma once

#include <filesystem>
#include <map>
#include <vector>

#include "filesystem/FileIdentity.h"
#include "filesystem/GuardSurroundings.h"
#include "filesystem/PlaceTree.h"

namespace vostrel {

/// The protected places as they lie on this disk: the tables laid out for one user, each place under its own path
/// and under the one that its links lead to, and what recognises those that exist under any other name.
struct PlaceSurvey {
    PlaceTree tree;
    /// The forms of the home folder acted in: as given and as resolved.
    std::vector<PathForm> homeForms;
    /// The same of the account's own home, where that is another one.
    std::vector<PathForm> accountForms;
    std::map<FileIdentity, PathForm> recognised;

    static PlaceSurvey of(const GuardSurroundings& surroundings);

    /// Whether it is one of the homes, lies in one or holds one.
    [[nodiscard]] bool concernsAHome(const PathForm& form) const;
};

/// The path as people are shown it: the home folder as "~". Goes by the text alone.
[[nodiscard]] std::string shownPath(const std::filesystem::path& path, const std::vector<PathForm>& homeForms);

}  // namespace vostrel
