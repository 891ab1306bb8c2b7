#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "filesystem/GuardException.h"

namespace vostrel {

/// A folder that a rule's target stands for, with the facts that decide how it may be cleaned. Nothing is known yet of
/// whether it exists.
struct ResolvedRoot {
    std::filesystem::path url;
    /// Only files with the names of screenshots may go.
    bool screenshotFolder = false;
    /// It must pass `TargetResolver::ownershipRefusal`; every root of every target must.
    bool mustBeOwnedByUser = true;
    /// The other application's setting that chose this folder: "the screenshot location".
    std::optional<std::string> setting;
    /// Items may only go to the Trash: the preset says so, a setting chose the folder, or a link leads to it.
    bool trashOnly = false;
    /// A symbolic link leads to it.
    bool linked = false;
    /// Its items arrived when their ".trashinfo" files say.
    bool datedByTrashInfo = false;
    /// For a folder in the Desktop or Documents tree that the user named, or saves screenshots to.
    std::optional<GuardException> exception;

    friend bool operator==(const ResolvedRoot&, const ResolvedRoot&) = default;
};

}  // namespace vostrel
