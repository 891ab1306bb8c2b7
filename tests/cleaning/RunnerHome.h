#pragma once

#include <cerrno>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "cleaning/CleanupRunner.h"
#include "cleaning/ExecutorHome.h"

namespace vostrel {

/// A disk whose free space a test decides: one answer after the other, the last one for ever.
class FixedCapacity final : public VolumeCapacityReading {
public:
    mutable std::vector<std::optional<std::int64_t>> free{1'000};
    std::function<bool()> fails = [] { return false; };

    [[nodiscard]] std::expected<VolumeCapacity, VolumeCapacityError> read(
        const std::filesystem::path& /*volumeAt*/, ImportantFigure /*important*/) const override {
        const auto next = free.front();
        if (free.size() > 1) free.erase(free.begin());
        if (!next || fails()) return std::unexpected(VolumeCapacityError{EIO});
        return VolumeCapacity{10'000, *next};
    }
};

/// A home in which rules are run and recorded.
class RunnerHome : public ExecutorHome {
public:
    /// A rule that the user approved as it is: everything in a folder, which holds one file, for good.
    [[nodiscard]] Rule approvedRule(
        const std::string& folder, std::vector<RuleTrigger> triggers,
        const std::function<void(Rule&)>& edit = [](Rule&) {}) const {
        home.makeFile(folder + "/file");
        Rule rule = ruleOn(folder);
        rule.id = Uuid::random();
        rule.name = folder;
        rule.action = CleanupAction::deletePermanently;
        rule.triggers = std::move(triggers);
        rule.createdAt = now;
        edit(rule);
        rule.approval = rule.approvalKey(planner.currentRoots(rule).value(), catalog);
        return rule;
    }

    FixedCapacity capacity;
    CleanLog log{home / "Log"};
    RunLock lock{home / "run.lock"};
    CleanupRunner runner{.reader = capacity,
                         .planner = planner,
                         .executor = executor,
                         .runningApps = apps,
                         .log = log,
                         .lock = lock,
                         .clock = [this] { return now; }};
};

}  // namespace vostrel
