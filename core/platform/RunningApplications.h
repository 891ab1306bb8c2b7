#pragma once

#include <optional>
#include <set>
#include <string>

namespace vostrel {

/// Which applications run now, by the identifiers that rules wait for: bundle identifiers, on Linux the desktop's
/// application ids ("org.mozilla.firefox"). Safe on any thread.
class RunningAppsProviding {
public:
    virtual ~RunningAppsProviding() = default;

    /// Nothing when the system could not tell: then every application may be running.
    [[nodiscard]] virtual std::optional<std::set<std::string>> runningIdentifiers() const = 0;
    /// The name that the user knows the application by; the identifier where none is known.
    [[nodiscard]] virtual std::string displayName(const std::string& identifier) const = 0;
};

/// What the system says of the running user's applications.
class SystemRunningApps final : public RunningAppsProviding {
public:
    [[nodiscard]] std::optional<std::set<std::string>> runningIdentifiers() const override;
    [[nodiscard]] std::string displayName(const std::string& identifier) const override;
};

}  // namespace vostrel
