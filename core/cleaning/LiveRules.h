#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "base/Uuid.h"
#include "rules/Rule.h"

namespace vostrel {

/// The rules as they are now, and whether automatic cleaning is paused: what a run asks meanwhile. Thread-safe.
class LiveRules {
public:
    void update(std::map<Uuid, Rule> newest, bool isCleaningPaused) {
        const std::lock_guard guard(lock);
        rules = std::move(newest);
        paused = isCleaningPaused;
    }
    /// Nothing once the rule was removed.
    [[nodiscard]] std::optional<Rule> rule(const Uuid& id) const {
        const std::lock_guard guard(lock);
        const auto found = rules.find(id);
        return found == rules.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] bool isPaused() const {
        const std::lock_guard guard(lock);
        return paused;
    }

private:
    mutable std::mutex lock;
    std::map<Uuid, Rule> rules;
    bool paused = false;
};

}  // namespace vostrel
