#pragma once

#include <compare>
#include <set>
#include <string>
#include <vector>

namespace vostrel {

/// A command that asks the system something.
struct ProbeCommand {
    /// An absolute path.
    std::string executable;
    std::vector<std::string> arguments;

    /// How much swap space is in use.
    [[nodiscard]] static ProbeCommand swapUsage();
    /// The names of the startup disk's local snapshots.
    [[nodiscard]] static ProbeCommand localSnapshots();
    /// The processes that use most memory.
    [[nodiscard]] static ProbeCommand topMemory();
    /// These three: no other command is ever run.
    [[nodiscard]] static std::set<ProbeCommand> allowed();

    friend auto operator<=>(const ProbeCommand&, const ProbeCommand&) = default;
};

}  // namespace vostrel
