#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <set>
#include <tuple>

#include "cleaning/RunnerHome.h"
#include "support/PrivateMounts.h"
#include "support/Rounds.h"
#include "support/linux/SystemCalls.h"

namespace vostrel {
namespace {

using std::chrono::days;
using test::CallFault;
using testing::SizeIs;
using Status = ItemOutcome::Status;
namespace fs = std::filesystem;

/// Paths with what they are, as tests compare them before and after: a folder by its number alone, for what is removed
/// from it changes its dates.
using Contents = std::set<std::tuple<std::string, std::uint64_t, std::int64_t, Date>>;

Contents contentsOf(const fs::path& place) {
    Contents found;
    const auto add = [&](const fs::path& path) {
        const auto status = statusOfPath(path);
        if (!status) return;
        const bool isFolder = status->type == EntryType::folder;
        found.insert({path, status->inode, isFolder ? 0 : status->length, isFolder ? Date() : status->changed});
    };
    add(place);
    if (fs::is_directory(fs::symlink_status(place)))
        for (const auto& entry : fs::recursive_directory_iterator(place))
            add(entry.path());
    return found;
}

std::size_t openDescriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

/// The rules that are run under faults: what they clean, next to what they do not.
enum class Scene { deleting, trashing, projects };

/// Every operation that a run asks the system or its injected functions for fails in turn.
class CleaningFaultsTest : public testing::Test, protected RunnerHome {
protected:
    CleaningFaultsTest() {
        const auto jumping = [this] { return now + days(CallFault::errorOf("clock")); };
        executor.clock = jumping;
        runner.clock = jumping;
        capacity.fails = [] { return CallFault::errorOf("capacity") != 0; };
        executor.volumeIdentity = [](const fs::path& path) {
            return CallFault::errorOf("volumeIdentity") != 0 ? std::nullopt : volumeIdentityOf(path);
        };
        executor.volumeUUID = [](const fs::path& path) {
            return CallFault::errorOf("volumeUUID") != 0 ? std::nullopt : volumeUUIDOf(path);
        };
        auto io = CleanLog::IO::system();
        io.appendLine = [append = io.appendLine](std::string_view line,
                                                 const fs::path& file) -> std::expected<void, SystemError> {
            const int error = CallFault::errorOf("appendLine");
            if (error != 0) return std::unexpected(SystemError{error, "write", file});
            return append(line, file);
        };
        log = CleanLog(home / "Log", io);
    }

    void build(Scene scene) {
        for (const char* made : {"cache", "code", "victim", "Log", "run.lock", ".local"})
            fs::remove_all(home / made);
        home.makeFile("victim/precious");
        for (const char* file : {"cache/file", "cache/folder/a", "cache/folder/sub/b", "cache/folder/sub/c",
                                 "cache/kept.key", "cache/holds/kept.key", "cache/last"})
            home.makeFile(file);
        fs::create_hard_link(home / "victim/precious", home / "cache/folder/twin");
        home.makeLink("cache/folder/sub/link", home / "victim");
        for (const char* project : {"one", "two"}) {
            const std::string folder = std::string("code/") + project;
            home.makeFile(folder + "/package.json");
            home.makeFile(folder + "/src/main.js");
            home.makeFile(folder + "/node_modules/a/package.json");
            home.makeFile(folder + "/node_modules/.package-lock.json", R"({"packages": {"node_modules/a": {}}})");
        }
        home.makeFolder(".local/share");
        Rule made = ruleOn("cache", [](RuleFilter& filter) { filter.excludeGlobs = {"*.key"}; });
        if (scene == Scene::projects) {
            made = Rule();
            made.target = ProjectScanTarget{{home / "code"}, {ArtifactKind::nodeModules}, 30};
        }
        made.action = scene == Scene::trashing ? CleanupAction::trash : CleanupAction::deletePermanently;
        made.id = Uuid::random();
        rule = made;
        seen = plan(rule).value();
        ASSERT_THAT(seen.items, SizeIs(scene == Scene::projects ? 2 : 3));

        items.clear();
        outside = contentsOf(home.path());
        for (const PlannedItem& item : seen.items) {
            items.push_back(contentsOf(item.url));
            for (const auto& entry : items.back())
                outside.erase(entry);
        }
        // The hard link's other name keeps its content; its dates change with the name that goes.
        std::erase_if(outside, [&](const auto& entry) { return std::get<0>(entry) == home / "victim/precious"; });
    }

    /// What must hold however the system failed.
    void expectTheTruth(const RunReport& report) const {
        const Contents left = contentsOf(home.path());
        EXPECT_TRUE(std::ranges::includes(left, outside)) << "what was not planned was touched";
        EXPECT_EQ(home.read("victim/precious"), "content");
        if (report.status == RunStatus::skipped) {
            EXPECT_NE(report.skipReason, std::nullopt);
            for (const Contents& item : items)
                EXPECT_TRUE(std::ranges::includes(left, item)) << "something went of a run that was not begun";
            return;
        }
        ASSERT_EQ(report.outcomes.size(), seen.items.size());
        EXPECT_EQ(report.itemsCleaned + report.itemsPartlyDeleted + report.itemsFailed + report.itemsLeftAlone +
                      report.itemsNotAttempted,
                  report.plannedItems);
        for (std::size_t each = 0; each < items.size(); ++each)
            expectTheTruth(report.outcomes[each], items[each], left);
    }
    void expectTheTruth(const ItemOutcome& outcome, const Contents& item, const Contents& left) const {
        SCOPED_TRACE(outcome.path.native() + ": " + outcome.message.value_or("no message"));
        const bool isThere = statusOfPath(outcome.path).has_value();
        const bool wentAsPlanned = outcome.status == Status::deleted || outcome.status == Status::trashed;
        EXPECT_EQ(outcome.message.has_value(), !wentAsPlanned && outcome.status != Status::notAttempted);
        EXPECT_TRUE(!outcome.message || outcome.message->ends_with('.'));
        EXPECT_EQ(isThere, !wentAsPlanned && !outcome.trashPath);
        EXPECT_TRUE(outcome.status != Status::trashed || fs::exists(*outcome.trashPath));
        const bool mayHaveLost = wentAsPlanned || outcome.status == Status::partlyDeleted || outcome.trashPath;
        EXPECT_TRUE(mayHaveLost || std::ranges::includes(left, item)) << "less than all of it is left";
        if (rule.action != CleanupAction::trash) return;
        for (const auto& [path, inode, size, changed] : item)
            EXPECT_TRUE(std::ranges::any_of(left, [&](const auto& entry) { return std::get<1>(entry) == inode; }))
                << path << " is neither in its place nor in the Trash";
    }

    /// Runs with one fault, then without.
    void expectTheTruthUnder(const char* operation, int nth, int error, CallFault::Lasting lasting) {
        const auto open = openDescriptors();
        const auto report = [&] {
            const CallFault fault(operation, nth, error, lasting);
            return run(seen);
        }();
        EXPECT_EQ(openDescriptors(), open);
        expectTheTruth(report);
        const auto left = plan(rule);
        ASSERT_TRUE(left.has_value());
        const auto count = std::ssize(left->items);
        EXPECT_TRUE(count == 0 || run(*left).itemsCleaned == count) << "the next run does not work";
    }

    [[nodiscard]] RunReport run(const CleanupPlan& plan) { return runner.run(rule, plan, present, control); }

    Rule rule;
    CleanupRunner::Present present{.isPaused = [] { return false; }, .currentRule = [this] { return rule; }};
    CleanupPlan seen;
    std::vector<Contents> items;
    Contents outside;
};

TEST_F(CleaningFaultsTest, eachOperationThatFailsLeavesTheUnplannedAloneAndATrueReport) {
    const std::pair<const char*, std::vector<int>> operationsWithErrors[] = {
        {"openat2", {EACCES, EMFILE, EIO, ENOENT}},
        {"openat", {EACCES, ENOSPC, ENFILE}},
        {"getdents64", {EIO}},
        {"statx", {EACCES, EIO}},
        {"unlinkat", {EACCES, EBUSY, EIO, EROFS}},
        {"renameat2", {EXDEV, ENOSPC, EINVAL}},
        {"write", {ENOSPC, EIO}},
        {"fsync", {EIO}},
        {"mkdirat", {ENOSPC, EACCES}},
        {"ftruncate", {EIO}},
        {"flock", {ENOLCK}},
        {"appendLine", {ENOSPC}},
        {"capacity", {EIO}},
        {"volumeIdentity", {EIO}},
        {"volumeUUID", {EIO}},
        {"clock", {-365, 3650}},  // days that it jumps
    };
    for (const auto scene : {Scene::deleting, Scene::trashing, Scene::projects}) {
        for (const auto& [operation, errors] : operationsWithErrors) {
            build(scene);
            const int last = [&] {
                const CallFault counting(operation, INT_MAX, EIO, CallFault::Lasting::once);
                EXPECT_EQ(run(seen).itemsCleaned, std::ssize(items));
                return counting.met();
            }();
            const int step = std::max(1, last / test::rounds(2));
            for (int nth = 1; nth <= last; nth += step) {
                for (const int error : errors) {
                    for (const auto lasting : {CallFault::Lasting::once, CallFault::Lasting::forever}) {
                        SCOPED_TRACE(testing::Message()
                                     << "scene " << static_cast<int>(scene) << ", " << operation << " " << nth << " of "
                                     << last << ", error " << error
                                     << (lasting == CallFault::Lasting::once ? " once" : " forever"));
                        build(scene);
                        expectTheTruthUnder(operation, nth, error, lasting);
                        if (HasFailure()) return;
                    }
                }
            }
        }
    }
}

TEST_F(CleaningFaultsTest, removesNothingWhenTheDiskIsFullFromTheStart) {
    bool wasFull = false;
    const bool ran = withPrivateMounts([&] {
        if (::mount("tmpfs", home.path().c_str(), "tmpfs", 0, "size=512k,mode=700") != 0) return;
        for (const auto scene : {Scene::deleting, Scene::trashing}) {
            build(scene);
            std::ofstream filler(home / "filler", std::ios::binary);
            while (filler << std::string(4096, 'x') << std::flush)
                wasFull = true;
            const auto report = run(seen);
            EXPECT_EQ(report.skipReason, RunSkipReason::logUnavailable);
            expectTheTruth(report);
            filler.close();
            fs::remove(home / "filler");
            EXPECT_EQ(run(seen).itemsCleaned, std::ssize(items));
        }
    });
    if (!ran || !wasFull) GTEST_SKIP() << "mounts are not allowed here";
}

}  // namespace
}  // namespace vostrel
