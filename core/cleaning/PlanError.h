#pragma once

#include <string>

namespace vostrel {

/// Why a rule could not be planned, with the sentence that tells the user.
struct PlanError {
    enum class Kind {
        // These carry a sentence made where the failure was found.
        protectedRoot,
        settingUnreadable,
        folderNotTrusted,
        filterNotAllowed,
        actionNotAllowed,
        overlappingRoots,
        // These have a sentence of their own, unless a preset wants another.
        rootMissing,
        rootNotDirectory,
        rootUnreadable,
        rootHasNoVolumeUUID,
        rootChanged,
        basisUnsupportedOnThisDisk,
        presetUnknown,
        presetNotFound,
        cancelled,
    };

    Kind kind = Kind::rootMissing;
    std::string sentence;

    /// A failure with its own sentence.
    static PlanError of(Kind kind);

    friend bool operator==(const PlanError&, const PlanError&) = default;
};

}  // namespace vostrel
