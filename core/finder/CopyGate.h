#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "finder/FileHasher.h"
#include "finder/FinderResult.h"
#include "platform/OwnedDescriptor.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// Lets a file that a search found go to the Trash only as that very file, and a duplicate only beside a copy that
/// stays on the same disk: immediately before it would go, its content is compared byte for byte with that of a copy
/// that nobody chose. On another disk it might be the same file, seen another way, or be gone tomorrow.
///
/// Both are locked from then until the next file is asked about, so that another program's gate does not take the one
/// for a copy that stays while this one lets it go. The search outlives the object. Used by one thread.
class CopyGate {
public:
    CopyGate(const FinderResult& result, const std::set<std::filesystem::path>& chosen,
             std::function<bool()> isCancelled);

    /// A sentence when the file must stay: `CleanupRunner::ItemGate`.
    [[nodiscard]] std::optional<std::string> operator()(const PlannedItem& item);

    /// Why a file may not be chosen: the search did not find it, something blocks it, or no copy of it would stay.
    [[nodiscard]] std::optional<std::string> refusalFor(const std::filesystem::path& file) const;

    static constexpr const char* notFound = "This search did not find it.";
    static constexpr const char* noCopyStays = "No copy of it on the same disk is known to stay.";
    static constexpr const char* changed = "It changed after the search.";
    static constexpr const char* noCopyLeft = "No copy of it that stays is still the same, so it stays.";

private:
    struct Found {
        FinderStamp stamp;
        std::optional<std::string> trashBlock;
        bool isDuplicate = false;
        /// Of a duplicate, the copies that stay.
        std::vector<const DuplicateCopy*> staying;
    };

    [[nodiscard]] bool isHeldBeside(const std::filesystem::path& file, const FinderStamp& stamp,
                                    const DuplicateCopy& copy);

    std::map<std::filesystem::path, Found> found;
    std::function<bool()> cancelTest;
    // With their locks.
    OwnedDescriptor heldFile;
    OwnedDescriptor heldCopy;
};

}  // namespace vostrel
