#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "base/Date.h"
#include "cleaning/FileOperating.h"

namespace vostrel {

/// What the system does to items: every entry is removed from a folder that is open and was checked.
class SystemFileOperations final : public FileOperating {
public:
    /// In the home whose Trash is the user's.
    explicit SystemFileOperations(std::filesystem::path actingIn, Clock present = &Date::now)
        : home(std::move(actingIn)), clock(std::move(present)) {}

    [[nodiscard]] std::expected<std::optional<std::filesystem::path>, std::string> trash(
        const std::filesystem::path& item, FileIdentity identity, FileIdentity parent) override;
    [[nodiscard]] Removal remove(const std::filesystem::path& item, const RemovalLimits& limits) override;
    void forgetTrashed(const std::filesystem::path& item) override;

private:
    std::filesystem::path home;
    /// Dates what goes to the Trash.
    Clock clock;
};

}  // namespace vostrel
