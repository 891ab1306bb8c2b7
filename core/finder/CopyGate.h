#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "filesystem/FileIdentity.h"
#include "finder/FileHasher.h"
#include "finder/FinderResult.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// Lets a file that a search found go to the Trash only as that very file, and a duplicate only beside a copy that
/// stays: immediately before it would go, its content is compared byte for byte with that of a copy that nobody chose.
///
/// What it is built with stays as it is: the search, and all the files that were chosen of it. Used by one thread.
class CopyGate {
public:
    CopyGate(const FinderResult& result, const std::set<std::filesystem::path>& chosenFiles,
             std::function<bool()> isCancelled);

    /// A sentence when the file must stay: `CleanupRunner::ItemGate`.
    [[nodiscard]] std::optional<std::string> operator()(const PlannedItem& item) const;

    /// Why a file may not be chosen: the search did not find it, something blocks it, or every copy of it was chosen.
    [[nodiscard]] std::optional<std::string> refusalFor(const std::filesystem::path& file) const;

    static constexpr const char* notFound = "This search did not find it.";
    static constexpr const char* everyCopyChosen = "Every copy of it that would stay was chosen. One has to stay.";
    static constexpr const char* changed = "It changed after the search.";
    static constexpr const char* noCopyLeft = "No copy of it that stays is still the same, so it stays.";

private:
    struct Found {
        FinderStamp stamp;
        std::optional<std::string> trashBlock;
        /// Its group; nothing of a file without copies.
        const DuplicateGroup* group = nullptr;
    };

    [[nodiscard]] bool stays(const DuplicateCopy& copy) const;
    [[nodiscard]] bool isEqual(const std::filesystem::path& file, const FinderStamp& stamp,
                               const DuplicateCopy& copy) const;

    std::map<std::filesystem::path, Found> found;
    std::set<std::filesystem::path> chosen;
    std::function<bool()> cancelTest;
};

}  // namespace vostrel
