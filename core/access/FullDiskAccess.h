#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vostrel {

/// Tells whether this process may read the folders that macOS hides from applications without Full Disk Access. Where
/// the system has no such gate, the host passes an answer that is always yes.
class FullDiskAccessChecking {
public:
    FullDiskAccessChecking() = default;
    FullDiskAccessChecking(const FullDiskAccessChecking&) = default;
    FullDiskAccessChecking& operator=(const FullDiskAccessChecking&) = default;
    virtual ~FullDiskAccessChecking() = default;

    [[nodiscard]] virtual bool hasFullDiskAccess() const = 0;
};

/// Finds out by trying: it opens what only such a process may open. Any thread.
class SystemFullDiskAccess final : public FullDiskAccessChecking {
public:
    /// One protected file to open, or one protected folder to read an entry of.
    struct Probe {
        enum class Kind { open, list };

        Kind kind = Kind::open;
        std::filesystem::path path;

        /// "open /a/b" or "list /a/b".
        [[nodiscard]] std::string description() const;
        friend bool operator==(const Probe&, const Probe&) = default;
    };
    /// Told of each path before it is tried.
    using Observer = std::function<void(const std::filesystem::path&)>;

    explicit SystemFullDiskAccess(const std::filesystem::path& home) : SystemFullDiskAccess(probes(home, "/")) {}
    explicit SystemFullDiskAccess(std::vector<Probe> probes, Observer tried = {});

    /// What is tried, in this order.
    [[nodiscard]] static std::vector<Probe> probes(const std::filesystem::path& home,
                                                   const std::filesystem::path& systemRoot);

    /// The first probe that says anything decides; one whose place is missing says nothing. When none says anything,
    /// access is not granted.
    [[nodiscard]] bool hasFullDiskAccess() const override;

private:
    std::vector<Probe> tries;
    Observer observer;
};

/// A fixed answer, for tests and for systems without the gate.
class FixedFullDiskAccess final : public FullDiskAccessChecking {
public:
    explicit FixedFullDiskAccess(bool answer) : granted(answer) {}

    [[nodiscard]] bool hasFullDiskAccess() const override { return granted; }

private:
    bool granted;
};

}  // namespace vostrel
