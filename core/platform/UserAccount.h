#pragma once

#include <cstdint>
#include <filesystem>

namespace vostrel {

/// The account this process acts for. None of these ever fails: what the system does not say is empty.

[[nodiscard]] std::uint32_t effectiveUserID();

/// The home folder in the account's password entry, whatever HOME says; empty when there is no entry.
[[nodiscard]] std::filesystem::path accountHome();

/// The folder that the system gives this user for temporary files.
[[nodiscard]] std::filesystem::path temporaryFolder();

}  // namespace vostrel
