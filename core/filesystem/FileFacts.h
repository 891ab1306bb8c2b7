#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "base/Date.h"
#include "base/Glob.h"
#include "filesystem/AgeBasis.h"
#include "filesystem/FileIdentity.h"
#include "filesystem/MeasuredItem.h"
#include "filesystem/PathGuards.h"
#include "filesystem/WalkBudget.h"

namespace vostrel {

/// The file system that an item lies on; comparable, and worth nothing after a restart.
struct VolumeIdentity {
    std::int32_t device = 0;
    std::uint64_t mount = 0;

    friend bool operator==(const VolumeIdentity&, const VolumeIdentity&) = default;
};

/// What is known of one item that a rule may touch, measured without following links.
struct FileFacts {
    std::filesystem::path url;
    bool isDirectory = false;
    bool isSymlink = false;
    /// Allocated bytes of the item and, for a folder, of everything counted below it.
    std::int64_t bytes = 0;
    Date newestModified;
    /// The newest modification, status change or arrival of the item and everything inside it.
    Date inUseDate;
    /// The date that the rule's age basis goes by.
    Date ageDate;
    std::optional<VolumeIdentity> volumeID;
    std::int64_t unreadableCount = 0;
    bool timedOut = false;
    /// Something below is protected and was not entered.
    bool containsProtected = false;
    /// Something below lies on another volume and was not entered.
    bool crossesVolume = false;
    std::int64_t fileCount = 0;
    /// Something below has a name that is never taken.
    bool containsExcluded = false;
    FileIdentity identity;
    /// It was not the same at the end of measuring as at the beginning.
    bool changedMeanwhile = false;
    /// The content of the item, or of something below, is only in the cloud.
    bool containsDataless = false;

    /// The item's basic facts (kind, dates) could not be read.
    struct MeasureError {
        enum class Kind { missingMetadata };
        Kind kind = Kind::missingMetadata;
        int code = 0;
    };

    static constexpr std::chrono::seconds defaultTimeLimit{30};

    /// Measures the item at an absolute path whose parent is reached through no link. A name that `exclusions` match is
    /// never taken. Ends early, `timedOut`, when the budget is spent. `exception` is that of the root it lies in.
    [[nodiscard]] static std::expected<FileFacts, MeasureError> measure(
        const std::filesystem::path& item, AgeBasis basis, const Glob::Patterns& exclusions, const PathGuards& guards,
        const WalkBudget& budget, const std::optional<GuardException>& exception = {});

    friend bool operator==(const FileFacts&, const FileFacts&) = default;
};

/// Measures the item at an absolute path whose parent is reached through no link: as `FileFacts::measure`, but in the
/// terms in which walks find items. `parent` is not known.
[[nodiscard]] std::expected<MeasuredItem, FileFacts::MeasureError> measureItem(
    const std::filesystem::path& item, const Glob::Patterns& exclusions, const PathGuards& guards,
    const WalkBudget& budget, const std::optional<GuardException>& exception = {});

/// The date of an item that an age basis goes by: for "modified" the newest modification inside it, for "added" its own
/// arrival, for "lastOpened" the newer of its last use and its arrival. What was never recorded counts as just changed,
/// never as old.
[[nodiscard]] Date ageDateOf(const MeasuredItem& item, const std::filesystem::path& path, AgeBasis basis);

}  // namespace vostrel
