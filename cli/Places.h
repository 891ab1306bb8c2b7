#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "cli/CommandLine.h"
#include "cli/CommandResult.h"
#include "platform/ProcessEnvironment.h"

namespace vostrel::cli {

/// Where a session acts.
struct Places {
    /// The home folder acted in, free of links.
    std::filesystem::path home;
    /// The account's own, which stays protected when `home` is another one.
    std::filesystem::path accountHome;
    /// Where rules and records are kept. It need not exist yet.
    std::filesystem::path data;
    Environment environment;
    /// The options that named them, as a shell reads them: " --home '/tmp/My Home'".
    std::string options;
};

/// The user's own places, or those that the command line names. A home that was named must be a folder of the user's:
/// then its data lies inside it too, whatever the environment says.
[[nodiscard]] std::expected<Places, Failure> placesFor(const GlobalOptions& options);

}  // namespace vostrel::cli
