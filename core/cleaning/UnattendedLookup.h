#pragma once

#include <filesystem>
#include <variant>

#include "filesystem/SizeWalker.h"
#include "filesystem/UnreadableReason.h"

namespace vostrel {

/// Tells whether a folder can be read by a run that nobody watches. Places that are closed are not even looked at: on
/// some systems opening a private folder makes the system ask the user for a permission. Any thread.
struct UnattendedLookup {
    struct Allowed {
        /// With every link resolved.
        std::filesystem::path realPath;
        friend bool operator==(const Allowed&, const Allowed&) = default;
    };
    struct Blocked {
        UnreadableReason reason = UnreadableReason::unknown;
        friend bool operator==(const Blocked&, const Blocked&) = default;
    };
    struct Missing {
        friend bool operator==(const Missing&, const Missing&) = default;
    };
    using Verdict = std::variant<Allowed, Blocked, Missing>;

    /// Which places may be opened, as a walk is told; everything where the system has no gate.
    SizeWalker::Access access = [](const std::string&) { return AccessDecision{}; };
    /// Whether the process has Full Disk Access: it changes what `EPERM` means.
    bool fullDiskAccess = true;

    /// A path at which there is no folder is missing.
    [[nodiscard]] Verdict look(const std::filesystem::path& folder) const;
};

}  // namespace vostrel
