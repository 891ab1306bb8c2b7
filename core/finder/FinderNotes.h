#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "filesystem/WalkAccounting.h"
#include "finder/FinderCandidates.h"

namespace vostrel {

/// Which files a search takes up, so that listings keep no others.
struct FinderThresholds {
    std::int64_t largeBytes = 0;
    std::int64_t oldMinBytes = 0;
    std::int64_t duplicateMinBytes = 0;
    Date oldCutoff;

    [[nodiscard]] bool isLarge(const FinderStamp& stamp) const { return stamp.allocated >= largeBytes; }
    [[nodiscard]] bool isOld(const FinderStamp& stamp, Date newestDate) const {
        return stamp.allocated >= oldMinBytes && newestDate < oldCutoff;
    }
    [[nodiscard]] bool mayBeDuplicate(const FinderStamp& stamp) const { return stamp.size >= duplicateMinBytes; }
    [[nodiscard]] bool takes(const WalkedFile& file) const {
        return isLarge(file.stamp) || isOld(file.stamp, file.newestDate()) || mayBeDuplicate(file.stamp);
    }
};

/// What one folder's listing leaves for a search: the files that it takes up, how many others there are, and what kind
/// of folder it is by what it holds.
class FinderNotes final : public FolderNotes {
public:
    struct File {
        std::size_t nameStart = 0;
        std::size_t nameLength = 0;
        FinderStamp stamp;
        std::optional<FinderTime> added;
        bool isDataless = false;
    };

    explicit FinderNotes(const FinderThresholds& chosen) : thresholds(chosen) {}

    void entry(const FolderEntry& entry) override;
    void subfolder(std::string_view name) override;
    void clear() override;
    [[nodiscard]] std::size_t footprint() const override;

    [[nodiscard]] const std::vector<File>& files() const { return taken; }
    [[nodiscard]] std::string_view nameOf(const File& file) const {
        return std::string_view(names).substr(file.nameStart, file.nameLength);
    }
    /// Of what is not taken up.
    struct Counts {
        /// Files of one name.
        std::int64_t files = 0;
        /// Those whose content is only in the cloud.
        std::int64_t cloudOnly = 0;
        std::int64_t links = 0;
        std::int64_t otherVolumes = 0;
        std::int64_t unreadable = 0;
    };
    Counts others;
    /// The numbers of files of many names that are not taken up.
    std::vector<std::uint64_t> linkedOthers;

    /// Set ahead of the listing: the folder lies in one that a tool manages.
    bool isToolsAround = false;
    [[nodiscard]] bool isTools() const { return isToolsAround || marks.ofTools; }
    [[nodiscard]] bool isRepository() const {
        return marks.ofRepository || (marks.head && marks.objects && marks.references);
    }

private:
    void look(std::string_view name);

    const FinderThresholds& thresholds;
    std::vector<File> taken;
    std::string names;
    struct Marks {
        bool ofTools = false;
        bool ofRepository = false;
        // The three entries of a repository without a working tree.
        bool head = false;
        bool objects = false;
        bool references = false;
    };
    Marks marks;
};

}  // namespace vostrel
