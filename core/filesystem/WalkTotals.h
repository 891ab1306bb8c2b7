#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "filesystem/UnreadableReason.h"

namespace vostrel {

/// What a walk added up, for a whole tree or for one marked folder of it.
struct WalkTotals {
    /// Blocks of everything but folders and links; a hard-linked file counts once.
    std::int64_t allocatedBytes = 0;
    std::int64_t files = 0;
    /// Folders and entries that could not be read, places left out on purpose other than media libraries, and folders
    /// below the depth limit.
    std::int64_t unreadableFolders = 0;
    /// The first reason in the walk's order.
    std::optional<UnreadableReason> unreadableReason;
    /// Music and TV libraries passed over on purpose; they do not count as unreadable.
    std::int64_t leftOutLibraries = 0;
    std::int64_t linksSkipped = 0;
    /// Mount points and folders of another device, not entered.
    std::int64_t otherVolumes = 0;
    /// The budget ran out.
    bool stopped = false;

    /// Links, other volumes and left-out libraries do not make totals incomplete.
    [[nodiscard]] bool isComplete() const { return unreadableFolders == 0 && !stopped; }

    void addFile(std::int64_t bytes);
    void addUnreadable(UnreadableReason reason);
    void add(const WalkTotals& below);

    friend bool operator==(const WalkTotals&, const WalkTotals&) = default;
};

/// It could not be measured.
struct Unreadable {
    UnreadableReason reason = UnreadableReason::couldNotRead;
    friend bool operator==(const Unreadable&, const Unreadable&) = default;
};
/// It is a link, which is not followed.
struct SkippedLink {
    friend bool operator==(const SkippedLink&, const SkippedLink&) = default;
};
/// There is nothing at its path.
struct Missing {
    friend bool operator==(const Missing&, const Missing&) = default;
};

struct Measured {
    WalkTotals totals;
    /// Totals of each mark whose folder was walked, by the mark's name.
    std::map<std::string, WalkTotals> marks;
    /// Why the other marks that the walk met could not be measured.
    std::map<std::string, std::variant<Unreadable, SkippedLink>> skipped;

    friend bool operator==(const Measured&, const Measured&) = default;
};

/// What became of a walk; all but `Measured` speak of the root.
using WalkResult = std::variant<Measured, Unreadable, SkippedLink, Missing>;

/// The stored form of one walk.
struct MeasuredSize {
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::int64_t unreadableFolders = 0;
    std::optional<UnreadableReason> unreadableReason;
    bool stopped = false;
    std::int64_t leftOutLibraries = 0;

    MeasuredSize() = default;
    explicit MeasuredSize(const WalkTotals& totals);

    /// Why a stored one is refused.
    struct DecodeError {
        static constexpr std::string_view negative = "negative";
    };

    [[nodiscard]] bool isComplete() const { return unreadableFolders == 0 && !stopped; }

    friend bool operator==(const MeasuredSize&, const MeasuredSize&) = default;
};

}  // namespace vostrel
