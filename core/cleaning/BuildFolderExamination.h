#pragma once

#include <string>

#include "filesystem/FolderReader.h"
#include "filesystem/FolderSource.h"
#include "filesystem/WalkBudget.h"
#include "rules/ArtifactKind.h"
#include "rules/GitRepositories.h"

namespace vostrel {

/// What a recognised build folder turns out to be once everything in it was looked at.
enum class BuildFolderState {
    /// Nothing but what its tool made and can make again.
    theTools,
    /// It holds something of a person's, or somebody keeps it under version control.
    aPersons,
    couldNotRead,
    notReadInTime,
};

/// Examines the build folders of one plan or run, which share what is known of the repositories around them. One
/// thread uses it.
class BuildFolderExamination {
public:
    /// The source outlives the object.
    explicit BuildFolderExamination(FolderSource& from) : source(from), repositories(from) {}

    /// `folder` is an absolute path without links.
    [[nodiscard]] BuildFolderState examine(const std::string& folder, ArtifactKind kind, const WalkVolume& volume,
                                           const WalkBudget& budget);

private:
    FolderSource& source;
    GitRepositories repositories;
};

}  // namespace vostrel
