#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cleaning/CleanupExecutor.h"
#include "cleaning/PlannerHome.h"
#include "cleaning/SystemFileOperations.h"
#include "platform/FileStatus.h"

namespace vostrel {

/// The applications that a test says are running.
class NamedApps final : public RunningAppsProviding {
public:
    std::optional<std::set<std::string>> running = std::set<std::string>{};
    mutable int asked = 0;

    [[nodiscard]] std::optional<std::set<std::string>> runningIdentifiers() const override {
        ++asked;
        return running;
    }
    [[nodiscard]] std::string displayName(const std::string& identifier) const override {
        return identifier == "com.apple.dt.Xcode" ? "Xcode" : identifier;
    }
};

/// Removes for real and keeps a list of what was touched; the Trash is a folder of the home.
class RecordingOperations final : public FileOperating {
public:
    explicit RecordingOperations(const std::filesystem::path& inHome) : home(inHome), system(inHome) {}

    std::expected<std::optional<std::filesystem::path>, std::string> trash(const std::filesystem::path& item,
                                                                           FileIdentity identity,
                                                                           FileIdentity parent) override {
        touched.push_back(item.lexically_relative(home));
        if (onTrash) return onTrash(item);
        return system.trash(item, identity, parent);
    }
    Removal remove(const std::filesystem::path& item, const RemovalLimits& limits) override {
        touched.push_back(item.lexically_relative(home));
        if (onRemove) onRemove(item);
        return system.remove(item, limits);
    }
    void forgetTrashed(const std::filesystem::path& item) override { system.forgetTrashed(item); }

    std::vector<std::string> touched;
    std::function<std::optional<std::filesystem::path>(const std::filesystem::path&)> onTrash;
    std::function<void(const std::filesystem::path&)> onRemove;

private:
    std::filesystem::path home;
    SystemFileOperations system;
};

/// A home in which rules are planned and carried out.
class ExecutorHome : public PlannerHome {
public:
    using PlannerHome::PlannerHome;

    [[nodiscard]] CleanupExecutor::Order orderOf(const Rule& rule) const {
        CleanupExecutor::Order order;
        order.action = rule.action;
        order.filter = rule.filter;
        order.pauseWhileRunning = rule.pauseWhileRunning;
        return order;
    }
    [[nodiscard]] CleanupExecutor::Result execute(const CleanupPlan& plan, const Rule& rule) const {
        return executor.execute(plan, orderOf(rule), control);
    }

    RecordingOperations operations{home.path()};
    NamedApps apps;
    RunControl control;
    CleanupExecutor executor{
        .fileOps = operations, .guards = guards, .runningApps = apps, .catalog = catalog, .clock = [this] {
            return now;
        }};
};

}  // namespace vostrel
