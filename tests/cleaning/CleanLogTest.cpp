#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <map>
#include <set>

#include "base/LocalTime.h"
#include "cleaning/CleanLog.h"
#include "cleaning/RunFields.h"
#include "cleaning/RunSentences.h"
#include "stores/LineFile.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

namespace fs = std::filesystem;
using std::chrono::hours;
using testing::ElementsAre;
using testing::IsEmpty;

// Noon, so that an hour more or less of summer time changes no day.
const Date noon = Date::fromSeconds(1'741'345'200);

struct CleanLogTest : testing::Test {
    TemporaryFolder folder;
    std::set<int> failing;
    int appends = 0;
    std::vector<std::string> reads;

    [[nodiscard]] CleanLog log(std::int64_t mostBytes = CleanLog::defaultMaxTotalBytes) {
        return CleanLog(
            folder.path(),
            {.appendLine = [this](std::string_view line, const fs::path& file) -> std::expected<void, SystemError> {
                 if (failing.contains(++appends)) return std::unexpected(SystemError{ENOSPC, "write", file});
                 LineFile lines{file};
                 lines.sync = [](int) { return std::expected<void, int>(); };
                 return lines.append(line);
             },
             .read = [this](const fs::path& file) -> std::optional<std::string> {
                 reads.push_back(file.filename());
                 return CleanLog::IO::system().read(file);
             }},
            mostBytes);
    }

    /// A run of the rule with that name.
    static RunReport run(const std::string& name, Date at = noon) {
        Rule rule;
        rule.name = name;
        CleanupPlan plan;
        for (const char* path : {"/h/a", "/h/b"}) {
            PlannedItem item;
            item.url = path;
            item.bytes = 5;
            plan.items.push_back(item);
        }
        return RunReport::started(Uuid::random(), rule, plan, RunTrigger::schedule, at);
    }
    static RunReport ended(const RunReport& started) {
        return started.finished(
            started.startedAt + std::chrono::seconds(9),
            {{.path = "/h/a", .bytes = 5, .status = ItemOutcome::Status::trashed, .trashPath = "/t/a"},
             {.path = "/h/b", .bytes = 5, .status = ItemOutcome::Status::changed}},
            RunReport::Ending::finished, 3, {});
    }
    /// The text of a record without its line break.
    static std::string lineOf(const RunReport& report) {
        return *JSONCoding::encoder(JSONLayout::compact).encode(report);
    }
    /// Puts a run with both records into the log and returns its end record.
    RunReport logRun(const std::string& name, Date at) {
        const RunReport started = run(name, at);
        EXPECT_EQ(log().appendStarted(started), CleanLog::StartedRecord::full);
        EXPECT_TRUE(log().append(ended(started)));
        return ended(started);
    }
    [[nodiscard]] static std::vector<std::string> namesOf(const std::vector<RunReport>& runs) {
        std::vector<std::string> names;
        for (const auto& run : runs)
            names.push_back(run.ruleName);
        return names;
    }
    [[nodiscard]] static std::string dayName(Date date) { return localDay(date) + ".jsonl"; }
};

TEST_F(CleanLogTest, recordsAtLeastTheCountsWhileAnythingCanBeWritten) {
    using enum CleanLog::StartedRecord;
    struct Row {
        const char* what;
        std::set<int> failing;
        CleanLog::StartedRecord started;
        bool isEnded;
        std::size_t plannedPaths;
        std::size_t outcomes;
        bool plannedPathsNotLogged = false;
        bool outcomesNotLogged = false;
    };
    const Row table[] = {
        {"all well", {}, full, true, 2, 2},
        {"no planned items beside", {1}, full, true, 2, 2},
        {"a short started record", {2}, compact, true, 2, 2},
        {"neither", {1, 2}, compact, true, 2, 2},
        {"no item list beside", {3}, full, true, 2, 2},
        {"a short end record", {4}, full, true, 2, 2, false, true},
        {"an end record without its list", {3, 4}, full, true, 2, 0, false, true},
        {"nothing of the end", {3, 4, 5}, full, false, 2, 0},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.what);
        appends = 0;
        failing = row.failing;
        const RunReport report = run("Rule");
        EXPECT_EQ(log().appendStarted(report), row.started);
        if (row.started == compact) appends = 10;
        EXPECT_EQ(log().append(ended(report)), row.isEnded);

        const auto listed = log().recent(1);
        ASSERT_EQ(listed.size(), 1);
        EXPECT_EQ(listed[0].status, row.isEnded ? RunStatus::finished : RunStatus::started);
        EXPECT_EQ(listed[0].itemsCleaned, row.isEnded ? 1 : 0);
        EXPECT_EQ(listed[0].plannedPathsNotLogged, row.plannedPathsNotLogged);
        EXPECT_EQ(listed[0].outcomesNotLogged, row.outcomesNotLogged);
        EXPECT_THAT(listed[0].plannedPaths, IsEmpty());
        EXPECT_THAT(listed[0].outcomes, IsEmpty());
        const RunReport whole = log().withLists(listed[0]);
        EXPECT_EQ(whole.plannedPaths.size(), row.plannedPaths);
        EXPECT_EQ(whole.outcomes.size(), row.outcomes);
        for (const auto& name : folder.names())
            fs::remove_all(folder / name);
    }
    failing = {1, 2};
    appends = 0;
    ASSERT_TRUE(log().append(run("Rule")));
    EXPECT_TRUE(log().recent(1).at(0).plannedPathsNotLogged);
    failing = {2, 3};
    appends = 0;
    EXPECT_EQ(log().appendStarted(run("Rule")), notWritten);
}

TEST_F(CleanLogTest, recordsWhatIsNamedInNoText) {
    RunReport report = run("Rule \xFF");
    report.plannedPaths = {"/h/\xFF"};
    ASSERT_EQ(log().appendStarted(report), CleanLog::StartedRecord::full);
    ASSERT_TRUE(log().append(report.finished(noon, {{.path = "/h/\xFF", .message = "nothing is at \xFF"}},
                                             RunReport::Ending::stopped, {}, {"\xFF"})));
    const auto details = log().details(report.id);
    EXPECT_THAT(details.plannedPaths, ElementsAre("/h/\xFF"));
    ASSERT_EQ(details.outcomes.size(), 1);
    EXPECT_EQ(details.outcomes[0].path, "/h/\xFF");
    EXPECT_EQ(details.outcomes[0].message, "nothing is at \\xff");
}

TEST_F(CleanLogTest, readsAroundWhateverIsDamaged) {
    const RunReport first = run("First", noon);
    const RunReport last = run("Last", noon + hours(1));
    const std::string damaged = lineOf(ended(run("Damaged", noon)));
    std::string text = lineOf(first) + "\n";
    for (std::size_t length = 0; length < damaged.size(); ++length)
        text += damaged.substr(0, length) + "\n";
    folder.makeFile(dayName(noon), text + "\xFF\n" + lineOf(last));
    EXPECT_THAT(namesOf(log().recent(9)), ElementsAre("Last", "First"));
    fs::create_directory(folder / "2025-03-01.jsonl");
    folder.makeLink("2025-03-02.jsonl", folder / dayName(noon));
    folder.makeFile("2025-3-02.jsonl", lineOf(run("Other")));
    folder.makeFile("2025-03-02.jsonl.bak", lineOf(run("Other")));
    EXPECT_EQ(log().recent(9).size(), 2);
    EXPECT_THAT(CleanLog(folder / "missing").recent(9), IsEmpty());

    const std::string id = first.id.text();
    folder.makeFile("runs/" + id + ".jsonl",
                    R"({"id":")" + id + R"(","plannedPaths":["/a",7,"/b"],"version":9})" + "\n{\n" + R"({"id":")" +
                        Uuid::random().text() + R"(","outcomes":[{"path":"/x","bytes":1,"status":"trashed"}]})" + "\n" +
                        R"({"id":")" + id +
                        R"(","outcomes":[{"path":"/a","bytes":1,"status":"vaporised"},{"bytes":1}],"new":{}})");
    const auto details = log().details(first.id);
    EXPECT_THAT(details.plannedPaths, ElementsAre("/a", "/b"));
    EXPECT_THAT(details.outcomes, ElementsAre(ItemOutcome{.path = "/a", .bytes = 1}));
    EXPECT_EQ(log().details(last.id), RunDetails());
}

TEST_F(CleanLogTest, listsTheNewestRunsFromNoMoreFilesThanItTakes) {
    const Date yesterday = noon - hours(24);
    const Date before = noon - hours(48);
    logRun("late", noon + hours(2));
    logRun("clock set back", noon);
    logRun("at one moment", noon);
    ASSERT_EQ(log().appendStarted(run("interrupted", yesterday)), CleanLog::StartedRecord::full);
    const RunReport moved = run("moved", yesterday - hours(1));
    ASSERT_EQ(log().appendStarted(moved), CleanLog::StartedRecord::full);
    // The time zone changed during that run, so its end lies in another day.
    folder.makeFile(dayName(before), lineOf(ended(moved)) + "\n");
    logRun("oldest", before);

    const std::vector<std::string> all = {"late", "at one moment", "clock set back", "interrupted", "moved", "oldest"};
    const std::size_t filesRead[] = {0, 1, 1, 1, 3, 3, 3, 3};
    for (std::size_t limit = 0; limit < std::size(filesRead); ++limit) {
        reads.clear();
        const auto runs = log().recent(limit);
        EXPECT_EQ(namesOf(runs), std::vector(all.begin(), all.begin() + std::min<std::ptrdiff_t>(limit, 6)));
        EXPECT_EQ(reads.size(), filesRead[limit]) << limit;
    }
    const auto runs = log().recent(5);
    EXPECT_EQ(logLine(runs[3]), sentences::interrupted);
    EXPECT_EQ(logLine(runs[3], runs[3].id), "Running now.");
    EXPECT_EQ(runs[4].status, RunStatus::finished);

    EXPECT_THAT(namesOf(log().reports(noon)), ElementsAre("late", "at one moment", "clock set back"));
    reads.clear();
    EXPECT_THAT(namesOf(log().reports(noon + hours(1))), ElementsAre("late"));
    EXPECT_THAT(reads, testing::Not(testing::Contains(dayName(before))));
}

TEST_F(CleanLogTest, prunesDaysBeyondNinetyWithTheirDetails) {
    const auto old = logRun("91 days", noon - hours(24 * 91));
    logRun("90 days", noon - hours(24 * 90));
    logRun("today", noon);
    const std::string orphan = "runs/0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.jsonl";
    folder.makeFile(orphan);
    fs::last_write_time(folder / orphan, fs::file_time_type::clock::now() - hours(24 * 3650));
    folder.makeFile("1999-01-01.json");
    folder.makeLink("1999-01-01.jsonl", folder / "1999-01-01.json");
    const auto pruned = log().prune(noon);
    EXPECT_EQ(pruned.files, 3);
    EXPECT_THAT(namesOf(log().recent(9)), ElementsAre("today", "90 days"));
    EXPECT_EQ(folder.names("runs").size(), 2);
    EXPECT_EQ(log().details(old.id), RunDetails());
    EXPECT_THAT(folder.names(), testing::IsSupersetOf({"1999-01-01.json", "1999-01-01.jsonl"}));
    EXPECT_EQ(log().prune(noon).files, 0);
}

TEST_F(CleanLogTest, prunesTheOldestDaysOfALogThatIsTooLarge) {
    fs::resize_file(folder.makeFile(dayName(noon)), 300'000'000);
    EXPECT_EQ(log().prune(noon).files, 0) << "the newest day stays, however large";
    fs::remove(folder / dayName(noon));

    std::int64_t each = 0;
    for (int day = 3; day >= 1; --day) {
        logRun(std::to_string(day), noon - hours(24 * day));
        each = static_cast<std::int64_t>(fs::file_size(folder / dayName(noon - hours(24 * day))) +
                                         fs::file_size(log().sidecarURL(log().recent(1).at(0).id)));
    }
    EXPECT_EQ(log(3 * each).prune(noon).files, 0) << "exactly as much as it may hold";
    EXPECT_EQ(log((3 * each) - 1).prune(noon).bytes, each);
    EXPECT_THAT(namesOf(log().recent(9)), ElementsAre("1", "2"));
    EXPECT_EQ(log(0).prune(noon).files, 2);
    EXPECT_THAT(namesOf(log().recent(9)), ElementsAre("1"));
    EXPECT_EQ(folder.names("runs").size(), 1);
}

}  // namespace
}  // namespace vostrel
