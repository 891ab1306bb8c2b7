#pragma once

#include <filesystem>

#include "base/Date.h"
#include "rules/ArtifactKind.h"

namespace vostrel {

/// The project that a build folder belongs to, and when one of its own files, outside its build folders, last changed.
struct ProjectStamp {
    std::filesystem::path folder;
    ArtifactKind kind = ArtifactKind::nodeModules;
    Date newestSource;

    friend bool operator==(const ProjectStamp&, const ProjectStamp&) = default;
};

}  // namespace vostrel
