#include "rules/SkipReason.h"

#include <fmt/format.h>

#include "base/GroupedDigits.h"

namespace vostrel {

namespace {

struct Phrases {
    std::string_view alone;
    std::string_view afterOneItem;
    std::string_view afterItems;
};

constexpr Phrases sameEverywhere(std::string_view phrase) {
    return {phrase, phrase, phrase};
}

constexpr Phrases phrasesOf(SkipReason reason) {
    switch (reason) {
        case SkipReason::symlink:
            return {"that is a link", "that is a link", "that are links"};
        case SkipReason::otherVolume:
            return sameEverywhere("on another disk");
        case SkipReason::unreadable:
            return sameEverywhere("Vostrel could not read");
        case SkipReason::tooRecent:
            return sameEverywhere("changed in the last 10 minutes");
        case SkipReason::containsExcluded:
            return sameEverywhere("holding names you excluded");
        case SkipReason::timedOut:
            return {"not checked in time", "Vostrel could not check in time", "Vostrel could not check in time"};
        case SkipReason::protectedPlace:
            return sameEverywhere("Vostrel never removes");
        case SkipReason::changedWhileChecking:
            return {"changed while Vostrel was checking", "that changed while Vostrel was checking it",
                    "that changed while Vostrel was checking them"};
        case SkipReason::notDownloaded:
            return sameEverywhere("not downloaded from iCloud");
        case SkipReason::noToolSignature:
            return {"not recognized as a tool's folder", "that does not look like a tool made it",
                    "that do not look like a tool made them"};
    }
    return {};
}

}  // namespace

std::string_view phrase(SkipReason reason) {
    return phrasesOf(reason).alone;
}

std::string countedPhrase(SkipReason reason, std::size_t count) {
    const Phrases phrases = phrasesOf(reason);
    if (count == 1) return fmt::format("1 item {}", phrases.afterOneItem);
    return fmt::format("{} items {}", grouped(static_cast<std::int64_t>(count)), phrases.afterItems);
}

}  // namespace vostrel
