#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Uuid.h"
#include "filesystem/UnreadableReason.h"

namespace vostrel {

/// The build folders that a rule's project scan found, under the rule's name.
struct ProjectFolders {
    Uuid ruleID;
    std::string name;
    std::vector<std::filesystem::path> artifacts;
    /// Why they may not be all.
    std::optional<UnreadableReason> unreadable;

    friend bool operator==(const ProjectFolders&, const ProjectFolders&) = default;
};

}  // namespace vostrel
