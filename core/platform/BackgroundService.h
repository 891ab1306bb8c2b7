#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/ProcessEnvironment.h"

namespace vostrel {

/// Has the system keep this very program running for the account, from now on and after every login: as a unit of
/// systemd's user manager on Linux, as a launch agent on macOS. `arguments` are those that it is started with, `home`
/// is the account's own folder.
///
/// Gives the file that describes the service; or why it could not be installed, a sentence that says what to do. A
/// service that is there already is replaced.
[[nodiscard]] std::expected<std::filesystem::path, std::string> installBackgroundService(
    const std::vector<std::string>& arguments, const std::filesystem::path& home, const Environment& environment);

/// Stops the service and removes its file. Gives whether there was one.
[[nodiscard]] std::expected<bool, std::string> removeBackgroundService(const std::filesystem::path& home,
                                                                       const Environment& environment);

}  // namespace vostrel
