#include "cleaning/PlanError.h"

#include "rules/RuleSentences.h"

namespace vostrel {

namespace {

const char* sentenceOf(PlanError::Kind kind) {
    switch (kind) {
        case PlanError::Kind::rootMissing:
            return sentences::folderMissing;
        case PlanError::Kind::rootNotDirectory:
            return "The rule points at a file, not a folder.";
        case PlanError::Kind::rootUnreadable:
            return sentences::folderUnreadable;
        case PlanError::Kind::rootHasNoVolumeUUID:
            return "This folder's disk does not report a volume UUID, so Vostrel cannot recognize it later and will "
                   "not "
                   "clean it. Some network shares and disks formatted by other systems are like this.";
        case PlanError::Kind::rootChanged:
            return "The folder was replaced or moved while Vostrel was checking it. Preview it again.";
        case PlanError::Kind::basisUnsupportedOnThisDisk:
            return "This disk does not record when files were added or opened. Edit the rule to go by when items were "
                   "last modified.";
        case PlanError::Kind::presetUnknown:
            return sentences::presetNotAvailable;
        case PlanError::Kind::presetNotFound:
            return "None of the folders this preset cleans exist on this Mac.";
        case PlanError::Kind::cancelled:
            return "Stopped before it finished.";
        case PlanError::Kind::overlappingRoots:
            return "This rule's folders are inside one another, so Vostrel will not clean them. Edit the rule and "
                   "choose "
                   "folders that lie apart.";
        case PlanError::Kind::protectedRoot:
        case PlanError::Kind::settingUnreadable:
        case PlanError::Kind::folderNotTrusted:
        case PlanError::Kind::filterNotAllowed:
        case PlanError::Kind::actionNotAllowed:
            break;
    }
    return "";
}

}  // namespace

PlanError PlanError::of(Kind kind) {
    return {kind, sentenceOf(kind)};
}

}  // namespace vostrel
