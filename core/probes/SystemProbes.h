#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/Date.h"
#include "filesystem/WalkBudget.h"
#include "probes/ProbeResults.h"
#include "probes/ProcessRunning.h"

namespace vostrel {

/// Asks the system about space that no walk through folders shows: swap files, local snapshots, updates that wait,
/// simulator runtimes, and the memory use that makes swap grow. It only asks, and changes nothing.
///
/// What it asks is macOS's own; on another system each answer is unknown, with its reason.
struct SystemProbes {
    /// Swap use from here on counts as high.
    static constexpr std::int64_t highSwapBytes = 2'000'000'000;

    /// How long each command may take.
    [[nodiscard]] static const std::map<ProbeCommand, Duration>& timeouts();

    /// With the system's own answers and the given runner.
    [[nodiscard]] static SystemProbes ofThisSystem(std::shared_ptr<ProcessRunning> runner);

    std::shared_ptr<ProcessRunning> runner;
    /// The file's bytes; nothing when it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path& path)> readFile;
    /// Nothing when that cannot be told.
    std::function<std::optional<bool>(const std::filesystem::path& path)> folderExists;
    /// The blocks of a file, or of everything in a folder; nothing when not all of it could be measured.
    std::function<std::optional<std::int64_t>(const std::filesystem::path& path)> allocatedSize;
    /// The file that a process runs.
    std::function<std::optional<std::filesystem::path>(std::int32_t pid)> executablePath;

    /// Asks everything, one after the other. What the deadline leaves no time for stays not checked, and what is asked
    /// shortly before it has no longer than until then. Blocks; any thread that the runner allows.
    [[nodiscard]] ProbeResults run(const WalkBudget& budget) const;
    /// One of them alone.
    [[nodiscard]] ProbeValue<SwapUsage> swap(const WalkBudget& budget) const;
    [[nodiscard]] ProbeValue<std::vector<std::string>> localSnapshots(const WalkBudget& budget) const;

private:
    [[nodiscard]] ProbeValue<UpdatePlistInfo> updatePlist(const WalkBudget& budget) const;
    [[nodiscard]] ProbeValue<std::vector<SimulatorImage>> simulatorImages(const WalkBudget& budget) const;
    [[nodiscard]] ProbeValue<std::vector<MemoryConsumer>> memory(const WalkBudget& budget) const;

    /// The text that a command printed.
    [[nodiscard]] std::expected<std::string, ProbeUnknown> answer(const ProbeCommand& command,
                                                                  const WalkBudget& budget) const;
    [[nodiscard]] std::string fullName(const MemoryRow& row) const;
};

}  // namespace vostrel
