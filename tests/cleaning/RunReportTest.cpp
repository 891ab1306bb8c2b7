#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "cleaning/PlannerHome.h"
#include "cleaning/RunFields.h"
#include "cleaning/RunReport.h"
#include "cleaning/RunSummary.h"
#include "stores/JSONCoding.h"

namespace vostrel {
namespace {

using Status = ItemOutcome::Status;

TEST(RunReportTest, countsEachOutcomeAndKeepsTheFirstTenThousand) {
    Rule rule;
    rule.name = "Old downloads";
    CleanupPlan plan;
    plan.items.resize(10'001);
    for (PlannedItem& item : plan.items)
        item.bytes = 2;
    const auto started = RunReport::started(Uuid::random(), rule, plan, RunTrigger::manual, Date());
    EXPECT_EQ(started.plannedBytes, 20'002);
    EXPECT_EQ(started.plannedPaths.size(), 10'000);
    EXPECT_EQ(started.plannedPathsOmitted, 1);

    std::vector<ItemOutcome> outcomes;
    for (const auto& [status, bytes] : {std::pair(Status::trashed, 1),
                                        {Status::deleted, 2},
                                        {Status::partlyDeleted, 4},
                                        {Status::failed, 8},
                                        {Status::changed, 16},
                                        {Status::refused, 32}})
        outcomes.push_back({.path = "/h/one/a", .bytes = bytes, .status = status});
    outcomes.resize(10'003, {.path = "/h/one/a", .bytes = 64, .status = Status::notAttempted});
    const auto ended = started.finished(Date(), outcomes, RunReport::Ending::stopped, -5, {"Stopped."});
    EXPECT_EQ(ended.status, RunStatus::stopped);
    EXPECT_EQ(std::tie(ended.movedToTrashBytes, ended.deletedBytes, ended.itemsCleaned, ended.itemsPartlyDeleted,
                       ended.itemsFailed, ended.itemsLeftAlone, ended.itemsNotAttempted),
              std::make_tuple(1, 6, 2, 1, 1, 2, 9'997));
    EXPECT_EQ(ended.outcomes.size(), 10'000);
    EXPECT_EQ(omittedLine(ended.outcomes.size(), ended.outcomesOmitted),
              "The log lists the first 10,000 items. 3 more are not listed.");
    EXPECT_EQ(logLine(ended),
              "Deleted less than 1 MB, moved less than 1 MB to the Trash. 1 item could not be removed. 1 item could "
              "only be partly deleted. Stopped.");

    const auto text = JSONCoding::encoder(JSONLayout::compact).encode(ended);
    ASSERT_TRUE(text);
    EXPECT_EQ(JSONCoding::decoder().decode<RunReport>(*text), ended);
    auto negative = ended;
    negative.deletedBytes = -1;
    EXPECT_FALSE(decodeJSON<RunReport>(encodeJSON(negative)));
}

TEST(RunTriggerTest, tellsWhatItNeedsAndWhatAnApprovalCovers) {
    const RuleTrigger daily = DailyTrigger{9, 5};
    const RuleTrigger quit = WhenAppQuitsTrigger{"a.b"};
    const RuleTrigger below = BelowLineTrigger{};
    struct Row {
        RunTrigger trigger;
        bool needsApproval;
        bool isUnattended;
        std::set<RuleTrigger> permitting;
    };
    const Row table[] = {
        {RunTrigger::manual, false, false, {daily, quit, below, EndOfDayTrigger{}}},
        {RunTrigger::cleanNow, true, false, {daily, quit, below, EndOfDayTrigger{}}},
        {RunTrigger::schedule, true, true, {daily, EndOfDayTrigger{}}},
        {RunTrigger::belowLine, true, true, {below}},
        {RunTrigger::appQuit, true, true, {quit}},
        {RunTrigger::unknown, true, true, {}},
    };
    for (const auto& [trigger, needs, unattended, permitting] : table) {
        EXPECT_EQ(needsApproval(trigger), needs);
        EXPECT_EQ(isUnattended(trigger), unattended);
        for (const RuleTrigger& each : {daily, quit, below, RuleTrigger(EndOfDayTrigger{})}) {
            ApprovalKey approval;
            approval.unattendedTriggers = {each};
            EXPECT_EQ(isPermitted(trigger, approval), permitting.contains(each));
        }
    }
}

/// An ended run by its outcomes: a letter for each item that was trashed, deleted, partly deleted, changed, refused,
/// failed or not attempted, 2 MB each where it is in capitals.
RunReport runOf(std::string_view items, std::optional<std::int64_t> freed = {}, int rule = 1) {
    RunReport report;
    report.ruleID = Uuid({static_cast<std::uint8_t>(rule)});
    report.plannedItems = static_cast<std::int64_t>(items.size());
    std::vector<ItemOutcome> outcomes;
    bool stopped = false;
    for (const char letter : items) {
        const std::string_view letters = "tdpcrfn";
        const bool isLarge = letter < 'a';
        const auto status = static_cast<Status>(letters.find(isLarge ? static_cast<char>(letter + 32) : letter));
        stopped |= status == Status::notAttempted;
        outcomes.push_back({.path = "/h/a", .bytes = isLarge ? 2'000'000 : 0, .status = status});
    }
    const auto ending = stopped ? RunReport::Ending::stopped : RunReport::Ending::finished;
    return report.finished(Date(), outcomes, ending, freed, {});
}

/// Runs, each by its outcomes and the bytes that it freed where that is known, and what is said of them. With a line,
/// so many bytes are free after them, which is below it.
constexpr std::string_view summaries = R"(
DD 5000000 | Freed 4.0 MB | Removed 2 items.
D | Deleted 2.0 MB | Removed 1 item.
D -1 | Deleted 2.0 MB | Removed 1 item. Free space has not grown yet; local snapshots can keep deleted files for a while.
D 1, TT 0 | Freed less than 1 MB, moved 4.0 MB to the Trash | Removed 3 items. From 2 rules. Space in the Trash is freed when the Trash is emptied.
ttt | Removed 3 items | 
Tn | Cleaning stopped | Moved 2.0 MB to the Trash. Removed 1 item. Space in the Trash is freed when the Trash is emptied.
nn | Cleaning stopped | Nothing was removed.
tff | Cleaning did not finish | Removed 1 item. Vostrel could not remove 2 items. See the Log for details.
pf | Cleaning did not finish | 1 item could not be removed. 1 item could only be partly deleted. See the Log for details.
cc | Nothing was removed | Everything that matched had changed since it was checked, so Vostrel left it alone. See the Log for details.
cr | Nothing was removed | Nothing was removed.
t | Still below your line | Removed 1 item. 3.0 GB free after running your rules. Open Vostrel to see what is using space. Movies grew. | 3000000000
 | Nothing was removed | Still below your line with less than 1 MB free. Open Vostrel to see what is using space. Movies grew. | 0
)";

TEST(RunSummaryTest, saysWhatCameOfTheRuns) {
    for (const auto& line : split(summaries.substr(1), "\n")) {
        const auto row = split(line, " | ");
        std::vector<RunReport> reports;
        for (const auto& run : split(row.at(0), ", ")) {
            const auto parts = split(run, " ");
            const auto freed = parts.size() > 1 ? std::optional(std::stoll(parts[1])) : std::nullopt;
            reports.push_back(runOf(parts[0], freed, static_cast<int>(reports.size())));
        }
        const auto stillBelow = row.size() > 3 ? std::optional(std::stoll(row[3])) : std::nullopt;
        const auto summary = RunSummary::make(reports, stillBelow, "Movies grew.");
        ASSERT_TRUE(summary) << line;
        EXPECT_EQ(summary->title, row.at(1));
        EXPECT_EQ(summary->body, row.size() > 2 ? row[2] : "");
    }
    const auto skipped = RunReport::skipped({}, RunTrigger::schedule, RunSkipReason::nothingToClean, Date());
    EXPECT_EQ(RunSummary::make({&skipped, 1}, {}, {}), std::nullopt);
}

}  // namespace
}  // namespace vostrel
