#include "cleaning/BuildFolderExamination.h"

#include "rules/ArtifactRecognition.h"

namespace vostrel {

BuildFolderState BuildFolderExamination::examine(const std::string& folder, ArtifactKind kind, const WalkVolume& volume,
                                                 const WalkBudget& budget) {
    switch (repositories.tracking(folder)) {
        case GitRepositories::Answer::tracked:
            return BuildFolderState::aPersons;
        case GitRepositories::Answer::unknown:
            return BuildFolderState::couldNotRead;
        case GitRepositories::Answer::notTracked:
            break;
    }
    ArtifactRecognition recognition(source, volume, [&] { return budget.isSpent(); });
    if (recognition.canBeMadeAgain(folder, kind)) return BuildFolderState::theTools;
    if (budget.isSpent()) return BuildFolderState::notReadInTime;
    return recognition.trouble() == SkipReason::unreadable ? BuildFolderState::couldNotRead
                                                           : BuildFolderState::aPersons;
}

}  // namespace vostrel
