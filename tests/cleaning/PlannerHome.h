#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "cleaning/CleanupPlanner.h"
#include "filesystem/GuardSurroundings.h"
#include "filesystem/PathGuards.h"
#include "platform/UserAccount.h"
#include "rules/PresetCatalog.h"
#include "rules/TargetResolver.h"
#include "stores/DefaultsReading.h"
#include "support/TemporaryFolder.h"

namespace vostrel {

/// The file system as it is, but for what a test makes it say; its functions run on the helpers' threads as well.
class TrickedSource final : public FolderSource {
public:
    /// Changes an entry of a listing before the walk sees it.
    std::function<void(FolderEntry&)> onEntry = [](FolderEntry&) {};
    /// Runs before a folder is opened; a negative answer is the error that opening it fails with.
    std::function<int(const std::string&)> onOpen = [](const std::string&) { return 0; };

    std::expected<FileStatus, int> lookUp(const std::string& path) override;
    std::expected<std::string, int> resolve(const std::string& path) override;
    int open(const std::string& path) override;
    std::expected<FileStatus, int> status(int folder) override;
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) override;
    void close(int folder) override;

private:
    SystemFolderSource system;
};

/// A home folder in a temporary place and a planner that acts in it, with a clock forty days ahead: a status-change
/// time cannot be set, so this is what lets things be old.
class PlannerHome {
public:
    /// `settings` are what other applications have stored, as `FixedDefaults` lists it.
    explicit PlannerHome(std::map<std::string, DefaultsValue> settings = {});

    [[nodiscard]] Rule ruleOn(std::string_view folder) const;
    [[nodiscard]] CleanupPlanner planner() const;
    [[nodiscard]] std::expected<CleanupPlan, PlanError> plan(const Rule& rule) const;
    /// The rule that a preset of Linux is offered as.
    [[nodiscard]] Rule ruleOf(std::string_view preset) const;
    [[nodiscard]] std::vector<std::string> validationProblems(const Rule& rule) const;

    /// A path of the home.
    [[nodiscard]] std::filesystem::path operator/(std::string_view relative) const { return home / relative; }
    /// Dates the content of a file or folder so long before the planner's present.
    void setAge(std::string_view relative, Duration age) const;

    TemporaryFolder home;
    Date now = Date::now() + std::chrono::days(40);
    std::shared_ptr<TrickedSource> source = std::make_shared<TrickedSource>();
    VolumeQuestions volume;

private:
    FixedDefaults defaults;
    PresetCatalog catalog = PresetCatalog::offered(SystemKind::linux);
    PathGuards guards;
    TargetResolver resolver;
};

/// What a plan says, by the items' paths below the home: "planned", or the reason they were left out.
[[nodiscard]] std::map<std::string, std::string> verdicts(const CleanupPlan& plan, const PlannerHome& home);

/// Blocks of everything but folders and links below a folder, a hard-linked file once, counted without the library.
[[nodiscard]] std::int64_t independentSum(const std::filesystem::path& folder);

}  // namespace vostrel
