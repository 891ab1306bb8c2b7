#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "base/Uuid.h"
#include "cleaning/ItemOutcome.h"
#include "cleaning/RunSkipReason.h"
#include "cleaning/RunStatus.h"
#include "cleaning/RunTrigger.h"
#include "rules/CleanupAction.h"
#include "rules/CleanupPlan.h"
#include "rules/Rule.h"

namespace vostrel {

/// What a run of a rule was to do and what it did; also of a rule that was not run, and why. A value.
struct RunReport {
    /// As many paths, and as many outcomes, are kept one by one; the rest only in numbers.
    static constexpr std::size_t maxOutcomes = 10'000;

    Uuid id;
    Uuid ruleID;
    /// As the rule was called then.
    std::string ruleName;
    RunTrigger trigger = RunTrigger::unknown;
    CleanupAction action = CleanupAction::trash;
    RunStatus status = RunStatus::started;
    std::optional<RunSkipReason> skipReason;
    Date startedAt;
    std::optional<Date> finishedAt;
    /// The first of `rootPaths`.
    std::optional<std::filesystem::path> rootPath;
    std::vector<std::filesystem::path> rootPaths;
    std::int64_t plannedItems = 0;
    std::int64_t plannedBytes = 0;
    std::vector<std::filesystem::path> plannedPaths;
    std::int64_t plannedPathsOmitted = 0;
    /// The paths stand neither in the record nor in the run's detail file.
    bool plannedPathsNotLogged = false;
    /// By how much the volume's free space grew over the run; absent when it was not measured.
    std::optional<std::int64_t> freedBytes;
    /// By deletions, whole and in part.
    std::int64_t deletedBytes = 0;
    std::int64_t movedToTrashBytes = 0;
    /// Trashed, or deleted whole.
    std::int64_t itemsCleaned = 0;
    std::int64_t itemsPartlyDeleted = 0;
    std::int64_t itemsFailed = 0;
    /// Changed or refused.
    std::int64_t itemsLeftAlone = 0;
    std::int64_t itemsNotAttempted = 0;
    std::vector<ItemOutcome> outcomes;
    std::int64_t outcomesOmitted = 0;
    /// The record is one without lists.
    bool outcomesNotLogged = false;
    /// Sentences about the run as a whole.
    std::vector<std::string> messages;

    /// The record of a run that is about to begin.
    [[nodiscard]] static RunReport started(Uuid id, const Rule& rule, const CleanupPlan& plan, RunTrigger trigger,
                                           Date at);
    /// The record of a rule that is not run.
    [[nodiscard]] static RunReport skipped(const Rule& rule, RunTrigger trigger, RunSkipReason reason, Date at,
                                           std::optional<std::string> message = {});

    enum class Ending { finished, stopped };
    /// The end record of the run that this is the started one of.
    [[nodiscard]] RunReport finished(Date at, std::vector<ItemOutcome> itemOutcomes, Ending ending,
                                     std::optional<std::int64_t> freed, std::vector<std::string> sentences) const;

    /// Without the lists: what is written when the whole record cannot be.
    [[nodiscard]] RunReport countsOnly() const;

    friend bool operator==(const RunReport&, const RunReport&) = default;
};

/// The long lists of a run.
struct RunDetails {
    std::vector<std::filesystem::path> plannedPaths;
    std::vector<ItemOutcome> outcomes;

    friend bool operator==(const RunDetails&, const RunDetails&) = default;
};

/// The sentences of the log about a run: what it did, or why it was not run or did not finish. `runInHand` is the run
/// that some program is carrying out just now, if any: it has no end record either, and was not interrupted.
[[nodiscard]] std::string logLine(const RunReport& report, std::optional<Uuid> runInHand = {});

/// What stands above a run's list of items when it is not whole: "The log lists the first 10,000 items. 5 more are not
/// listed."
[[nodiscard]] std::optional<std::string> omittedLine(std::size_t listed, std::int64_t omitted);

}  // namespace vostrel
