#pragma once

#include <optional>
#include <vector>

#include "base/Uuid.h"
#include "cleaning/RunReport.h"
#include "cli/Output.h"
#include "filesystem/PathGuards.h"
#include "stores/JSONValue.h"

namespace vostrel::cli {

/// The log's list: a run each, when it began, its rule, what came of it, and the beginning of its id.
/// `runInHand` is the run that some program is carrying out just now.
void showRuns(Output& output, const std::vector<RunReport>& runs, std::optional<Uuid> runInHand);

/// One run with all its items, so that a person could undo what can be undone: what lies where in the Trash, what is
/// gone for good, what stayed and why.
void showRun(Output& output, const PathGuards& guards, const RunReport& run, std::optional<Uuid> runInHand = {});

/// A run that did not do all of what the preview showed, or whose end the log does not hold, in the terms of the exit
/// status.
[[nodiscard]] bool isShort(const RunReport& report);

/// What there is to say of such a run: of one that was skipped for a reason with a sentence of its own, that.
[[nodiscard]] std::string shortfall(const RunReport& report);

/// A run as its JSON document in a list, without its long lists.
[[nodiscard]] JSONValue summaryDocumentOf(const RunReport& run);

}  // namespace vostrel::cli
