#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "filesystem/FileIdentity.h"
#include "filesystem/GuardException.h"
#include "filesystem/RootIdentity.h"
#include "rules/CleanupAction.h"
#include "rules/ProjectStamp.h"
#include "rules/RuleFilter.h"
#include "rules/RuleTarget.h"
#include "rules/SkipReason.h"

namespace vostrel {

/// A folder that a plan opened.
struct PlanRoot {
    std::filesystem::path url;
    RootIdentity identity;
    /// Set when the root lies in the Desktop or Documents tree and the rule names that very folder.
    std::optional<GuardException> exception;
    /// The folder as the rule named it, before links were resolved.
    std::filesystem::path given;
    /// The other application's setting from which the folder was read: "the screenshot location".
    std::optional<std::string> setting;
    /// Only files with the names of screenshots were planned here.
    bool screenshotFolder = false;
    /// It is a Trash whose items were thrown away when their ".trashinfo" files say.
    bool datedByTrashInfo = false;
    bool trashOnly = false;
    bool linkedAtPlanning = false;
    bool iCloudAtPlanning = false;

    friend bool operator==(const PlanRoot&, const PlanRoot&) = default;
};

/// An item that would go, with all that its removal checks again first.
struct PlannedItem {
    std::filesystem::path url;
    /// Allocated bytes.
    std::int64_t bytes = 0;
    /// The date that the rule's age basis compares.
    Date ageDate;
    std::uint64_t fileID = 0;
    std::int32_t device = 0;
    /// The folder that contains it.
    FileIdentity parent;
    /// The newest date of any use or change inside it.
    Date inUseDate;
    bool isDirectory = false;
    /// The files inside; 1 for a file.
    std::int64_t fileCount = 0;
    /// Its root's place in `CleanupPlan::roots`.
    std::size_t rootIndex = 0;
    /// The project of a build folder.
    std::optional<ProjectStamp> project;

    friend bool operator==(const PlannedItem&, const PlannedItem&) = default;
};

/// An item that stays, and why.
struct SkippedItem {
    std::filesystem::path url;
    SkipReason reason = SkipReason::unreadable;
    /// The sentence about something protected, by the path guards or by the rule's preset, or that a search ran out of
    /// time in this folder.
    std::optional<std::string> refusal;

    friend bool operator==(const SkippedItem&, const SkippedItem&) = default;
};

/// The rule's terms when it was planned, so that a later edit shows.
struct PlanTerms {
    RuleTarget target;
    RuleFilter filter;
    CleanupAction action = CleanupAction::trash;

    friend bool operator==(const PlanTerms&, const PlanTerms&) = default;
};

/// The items of one root, to be shown together.
struct PlanGroup {
    /// The root's place in `CleanupPlan::roots`.
    std::size_t id = 0;
    /// The base's name; absent when the plan has one root only.
    std::optional<std::string> title;
    std::filesystem::path base;
    std::vector<PlannedItem> items;

    friend bool operator==(const PlanGroup&, const PlanGroup&) = default;
};

/// A preview: at one moment, every item that a rule would clean and every item that it leaves out and why.
///
/// A plan is a value and never stored. It is the only thing that removal accepts.
struct CleanupPlan {
    Uuid ruleID;
    std::vector<PlanRoot> roots;
    std::vector<PlannedItem> items;
    std::vector<SkippedItem> skipped;
    PlanTerms terms;
    /// The dates of some item could not all be read, and the plan went by what it had.
    bool limitedDates = false;
    Date createdAt;

    /// Whether it may be approved at that time: 15 minutes long, and a minute early in case the clock was set back.
    [[nodiscard]] bool isApprovable(Date at) const;
    [[nodiscard]] std::set<RootIdentity> rootIdentities() const;
    /// The sum of the items' allocated bytes.
    [[nodiscard]] std::int64_t totalBytes() const;
    /// The items by root, in the roots' order, without roots that have none.
    [[nodiscard]] std::vector<PlanGroup> groups() const;

    friend bool operator==(const CleanupPlan&, const CleanupPlan&) = default;
};

}  // namespace vostrel
