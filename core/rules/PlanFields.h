#pragma once

#include "rules/SkipReason.h"
#include "stores/JSONRecord.h"

namespace vostrel {

template <>
struct JSONNames<SkipReason> {
    static constexpr std::array list{
        JSONName{SkipReason::symlink, "symlink"},
        JSONName{SkipReason::otherVolume, "otherVolume"},
        JSONName{SkipReason::unreadable, "unreadable"},
        JSONName{SkipReason::tooRecent, "tooRecent"},
        JSONName{SkipReason::containsExcluded, "containsExcluded"},
        JSONName{SkipReason::timedOut, "timedOut"},
        JSONName{SkipReason::protectedPlace, "protected"},
        JSONName{SkipReason::changedWhileChecking, "changedWhileChecking"},
        JSONName{SkipReason::notDownloaded, "notDownloaded"},
        JSONName{SkipReason::noToolSignature, "noToolSignature"},
    };
};

}  // namespace vostrel
