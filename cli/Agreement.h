#pragma once

#include <cstdint>
#include <string>

#include "cli/CommandResult.h"
#include "cli/Session.h"
#include "rules/CleanupAction.h"

namespace vostrel::cli {

/// Whether the command line has said --yes.
enum class Consent { asked, given };

/// Asks on the terminal, unless consent is given. Without a terminal nobody can be asked. Fails with the sentence.
[[nodiscard]] CommandResult agree(Session& session, Consent consent, const std::string& question);

/// "Move 3 items to the Trash?"
[[nodiscard]] std::string questionFor(CleanupAction action, std::int64_t items);

}  // namespace vostrel::cli
