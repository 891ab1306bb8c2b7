#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "filesystem/WalkAccounting.h"
#include "spacemap/LargestEntries.h"

namespace vostrel {

/// What one folder's listing leaves for the map: sums, its largest files, and entries that cannot be measured.
///
/// Of files with one name it keeps a bounded number, and allocates nothing for the others. The scan's floor rises while
/// helpers list ahead of it: they keep what is above the floor they see, which is never higher than the one that holds
/// when the walk comes to the folder, so the scan can choose among these and no helper changes the map.
class SpaceNotes final : public FolderNotes {
public:
    struct File {
        std::string_view name;
        std::int64_t bytes = 0;
        std::uint64_t fileID = 0;
    };

    explicit SpaceNotes(const std::atomic<std::int64_t>& floorOfScan) : floor(floorOfScan) {}

    /// How much is wanted by name: nothing of a folder that shows no children.
    void wants(std::size_t files, std::size_t unmeasuredEntries);
    void entry(const FolderEntry& entry) override;
    void clear() override;
    [[nodiscard]] std::size_t footprint() const override;

    /// Files with several names, as listed. They are in no sum until whoever knows which are new has counted them.
    [[nodiscard]] std::size_t linkedCount() const { return linked.size(); }
    [[nodiscard]] File linkedFile(std::size_t index) const;
    void count(const File& file);

    struct Sums {
        std::int64_t bytes = 0;
        std::int64_t files = 0;
        /// Of files; those of one file each for itself.
        std::int64_t names = 0;
        std::int64_t links = 0;
        /// Entries that could not be examined.
        std::int64_t unreadable = 0;
    };
    Sums sums;
    LargestEntries largest;
    /// By name; the number is the error, 0 for the top of another volume.
    LargestEntries unmeasured;

private:
    struct LinkedFile {
        std::size_t nameStart = 0;
        std::size_t nameLength = 0;
        std::int64_t bytes = 0;
        std::uint64_t fileID = 0;
    };

    const std::atomic<std::int64_t>& floor;
    bool keepsNames = false;
    std::vector<LinkedFile> linked;
    std::string linkedNames;
};

}  // namespace vostrel
