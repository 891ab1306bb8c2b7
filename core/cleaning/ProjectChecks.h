#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Date.h"
#include "cleaning/ItemVerdict.h"
#include "filesystem/GuardException.h"
#include "filesystem/WalkBudget.h"
#include "rules/CleanupPlan.h"

namespace vostrel {

/// A project folder as it is now.
struct ProjectMeasure {
    /// Nothing when it could not be told.
    std::optional<Date> newestSource;
    /// By folder that holds build folders of the run, the names in it.
    std::map<std::filesystem::path, std::set<std::string>> entries;
};

/// What is to be measured of a project.
struct ProjectQuestion {
    std::filesystem::path project;
    std::optional<GuardException> exception;
    /// Folders whose entries are wanted.
    std::set<std::filesystem::path> holders;
    /// Folders from which the run removed something, whose own dates say nothing any more.
    std::set<std::filesystem::path> removedFrom;
    /// Polled meanwhile; may be empty.
    std::function<bool()> isCancelled;
};

using ProjectMeasuring = std::function<ProjectMeasure(const ProjectQuestion&)>;

/// Whether the projects of a run's build folders are still as untouched as the preview found them. One for a run.
///
/// Removing a build folder changes the folder around it. That folder's date does not count from then on; instead its
/// names must be those from before, without what the run removed.
class ProjectChecks {
public:
    /// A measure younger than this serves the next build folder of the project as well.
    static constexpr std::chrono::seconds measureLifetime{5};

    /// The plan outlives the object.
    ProjectChecks(const CleanupPlan& ofRun, int daysUntouched, ProjectMeasuring measuring);

    /// Why the item's project, of which it has one, keeps it from being removed. A cancelled measure says nothing about
    /// the project's other build folders.
    [[nodiscard]] std::optional<ItemVerdict> problem(const PlannedItem& item, const WalkBudget& budget);

    /// Something of this build folder is gone by the run's own doing.
    void removed(const PlannedItem& item);

private:
    struct Measured {
        Date at;
        ProjectMeasure measure;
    };

    [[nodiscard]] ProjectMeasure measure(const PlannedItem& item, const WalkBudget& budget);
    [[nodiscard]] std::optional<ItemVerdict> judge(const ProjectMeasure& measure, const ProjectStamp& stamp, Date now);
    [[nodiscard]] bool hasExpectedEntries(const std::filesystem::path& holder, const std::set<std::string>& names);

    const CleanupPlan& plan;
    int untouchedDays;
    ProjectMeasuring measureProject;
    /// By project, the folders inside it that hold build folders of the plan.
    std::map<std::filesystem::path, std::set<std::filesystem::path>> holders;
    std::map<std::filesystem::path, Measured> last;
    /// By project, the verdict for all that is left of it.
    std::map<std::filesystem::path, ItemVerdict> settled;
    /// By folder, the names of the build folders that the run took out of it.
    std::map<std::filesystem::path, std::set<std::string>> removedFrom;
    /// By folder, the names in it before anything was.
    std::map<std::filesystem::path, std::set<std::string>> entriesBefore;
};

}  // namespace vostrel
