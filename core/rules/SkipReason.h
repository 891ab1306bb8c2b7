#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vostrel {

/// Why a preview leaves an item out.
enum class SkipReason {
    symlink,               ///< it is a link
    otherVolume,           ///< it lies on another disk than its root
    unreadable,            ///< it, or a part of it, could not be read
    tooRecent,             ///< something in it changed in the last 10 minutes
    containsExcluded,      ///< it holds a name that the rule's exclude patterns name
    timedOut,              ///< it could not be measured before the time limit
    protectedPlace,        ///< the path guards refuse it
    changedWhileChecking,  ///< it changed while it was being measured
    notDownloaded,         ///< its content is only in the cloud
    noToolSignature,       ///< it does not carry the marks of the tool that makes such folders
};

/// The short phrase that says of an item why it was left out: "on another disk".
[[nodiscard]] std::string_view phrase(SkipReason reason);

/// So many items left out for one reason: "1 item that is a link", "3 items Vostrel could not check in time".
[[nodiscard]] std::string countedPhrase(SkipReason reason, std::size_t count);

}  // namespace vostrel
