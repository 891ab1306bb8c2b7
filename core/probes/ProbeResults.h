#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "probes/ProbeValue.h"

namespace vostrel {

struct SwapUsage {
    std::int64_t totalBytes = 0;
    std::int64_t usedBytes = 0;
    std::int64_t freeBytes = 0;

    friend bool operator==(const SwapUsage&, const SwapUsage&) = default;
};

/// An update that the system found and that is not installed.
struct RecommendedUpdate {
    std::string name;
    std::optional<std::string> version;
    std::optional<std::string> productKey;

    friend bool operator==(const RecommendedUpdate&, const RecommendedUpdate&) = default;
};

struct UpdatePlistInfo {
    std::vector<RecommendedUpdate> updates;
    /// When the system last looked for updates.
    std::optional<Date> lastCheck;

    friend bool operator==(const UpdatePlistInfo&, const UpdatePlistInfo&) = default;
};

/// A simulator runtime on the disk.
struct SimulatorImage {
    /// A UUID as its owner writes it: it may be put into a command.
    std::string identifier;
    /// "com.apple.CoreSimulator.SimRuntime.iOS-18-1".
    std::optional<std::string> runtime;
    std::optional<std::string> build;
    std::filesystem::path path;
    /// Allocated; nothing when it could not be measured.
    std::optional<std::int64_t> bytes;
    std::optional<Date> lastUsed;

    friend bool operator==(const SimulatorImage&, const SimulatorImage&) = default;
};

/// One process and the memory that it uses.
struct MemoryRow {
    std::int32_t pid = 0;
    std::string command;
    std::int64_t bytes = 0;

    friend bool operator==(const MemoryRow&, const MemoryRow&) = default;
};

/// All processes of one command.
struct MemoryConsumer {
    std::string name;
    std::int64_t bytes = 0;
    std::int64_t processes = 0;

    friend bool operator==(const MemoryConsumer&, const MemoryConsumer&) = default;
};

/// What the system says of space that no folder shows, and of what needs it.
struct ProbeResults {
    ProbeValue<SwapUsage> swap;
    /// Their names.
    ProbeValue<std::vector<std::string>> localSnapshots;
    ProbeValue<UpdatePlistInfo> updatePlist;
    ProbeValue<std::vector<SimulatorImage>> simulatorImages;
    /// Those with most memory first.
    ProbeValue<std::vector<MemoryConsumer>> memory;

    /// All of it unknown, since nothing was asked.
    [[nodiscard]] static ProbeResults notChecked() { return {}; }

    friend bool operator==(const ProbeResults&, const ProbeResults&) = default;
};

}  // namespace vostrel
