#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/CleanupPlanner.h"
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
    /// Runs before a folder is opened; any answer but 0 is the error that opening it fails with.
    std::function<int(const std::string&)> onOpen = [](const std::string&) { return 0; };

    std::expected<FileStatus, int> lookUp(const std::string& path) override { return system.lookUp(path); }
    std::expected<std::string, int> resolve(const std::string& path) override { return system.resolve(path); }
    std::expected<FileStatus, int> status(int folder) override { return system.status(folder); }
    void close(int folder) override { system.close(folder); }
    int open(const std::string& path) override {
        const int error = onOpen(path);
        if (error == 0) return system.open(path);
        errno = error;
        return -1;
    }
    std::expected<FolderListing::Step, int> readSome(int folder, FolderListing& listing, EntrySink& sink) override {
        EditingSink editing(sink, onEntry);
        return system.readSome(folder, listing, editing);
    }

private:
    struct EditingSink final : EntrySink {
        EditingSink(EntrySink& sink, const std::function<void(FolderEntry&)>& change) : next(sink), edit(change) {}
        void entry(const FolderEntry& entry) override {
            FolderEntry changed = entry;
            edit(changed);
            next.entry(changed);
        }
        EntrySink& next;
        const std::function<void(FolderEntry&)>& edit;
    };

    SystemFolderSource system;
};

/// The parts of a line of a table.
inline std::vector<std::string> split(std::string_view text, std::string_view at) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(at), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + at.size(), text.size()));
    }
    return parts;
}

/// What a plan says, by the items' paths below the home: "planned", or the reason they were left out.
using Verdicts = std::map<std::string, std::string>;

/// A home folder in a temporary place and a planner that acts in it, with a clock forty days ahead: a status-change
/// time cannot be set, so this is what lets things be old.
class PlannerHome {
    FixedDefaults defaults;

public:
    /// `settings` are what other applications have stored, as `FixedDefaults` lists it.
    explicit PlannerHome(std::map<std::string, DefaultsValue> settings = {}) : defaults(std::move(settings)) {}
    PlannerHome(const PlannerHome&) = delete;
    PlannerHome& operator=(const PlannerHome&) = delete;

    [[nodiscard]] Rule ruleOn(
        std::string_view folder, const std::function<void(RuleFilter&)>& edit = [](RuleFilter&) {}) const {
        Rule rule;
        rule.target = FolderTarget{home / folder};
        edit(rule.filter);
        return rule;
    }
    /// The rule that a preset of Linux is offered as.
    [[nodiscard]] Rule ruleOf(std::string_view preset) const { return catalog.preset(preset)->draftRule(now); }
    [[nodiscard]] std::vector<std::string> validationProblems(const Rule& rule) const {
        return rule.validationProblems(guards, resolver, catalog);
    }
    [[nodiscard]] std::expected<CleanupPlan, PlanError> plan(const Rule& rule) const { return planner.plan(rule, now); }
    [[nodiscard]] Verdicts verdicts(const CleanupPlan& plan) const {
        Verdicts said;
        for (const auto& item : plan.items)
            said[item.url.lexically_relative(home.path())] = "planned";
        for (const auto& item : plan.skipped)
            said[item.url.lexically_relative(home.path())] = phrase(item.reason);
        return said;
    }

    /// A path of the home.
    [[nodiscard]] std::filesystem::path operator/(std::string_view relative) const { return home / relative; }
    /// Dates the content of a file or folder so long before the planner's present.
    void setAge(std::string_view relative, Duration age) const {
        const Date date = now - age;
        const timespec time{.tv_sec = date.seconds(), .tv_nsec = date.nanosecondsOfSecond()};
        const timespec both[] = {time, time};
        ::utimensat(AT_FDCWD, (home / relative).c_str(), both, AT_SYMLINK_NOFOLLOW);
    }

    TemporaryFolder home;
    Date now = Date::now() + std::chrono::days(40);
    std::shared_ptr<TrickedSource> source = std::make_shared<TrickedSource>();
    PresetCatalog catalog = PresetCatalog::offered(SystemKind::linux);
    PathGuards guards{home.path(), {}};
    TargetResolver resolver{home.path(), defaults, guards, {effectiveUserID(), home / "temporary"}};
    CleanupPlanner planner{
        .guards = guards, .resolver = resolver, .catalog = catalog, .clock = [this] { return now; }, .source = source};
};

}  // namespace vostrel
