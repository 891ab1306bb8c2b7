#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "cleaning/CleanupExecutor.h"
#include "cleaning/ExecutorHome.h"
#include "platform/TrashInfo.h"
#include "rules/ArtifactFacts.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using testing::ElementsAre;
using testing::IsEmpty;
using Status = ItemOutcome::Status;
namespace fs = std::filesystem;

class CleanupExecutorTest : public testing::Test, protected ExecutorHome {
protected:
    [[nodiscard]] Rule deleting(
        std::string_view folder, const std::function<void(RuleFilter&)>& edit = [](RuleFilter&) {}) const {
        Rule rule = ruleOn(folder, edit);
        rule.action = CleanupAction::deletePermanently;
        return rule;
    }
    void replace(std::string_view relative) const {
        fs::rename(home / relative, home / (std::string(relative) + ".before"));
        home.makeFile(relative);
    }
};

TEST_F(CleanupExecutorTest, removesWhatThePreviewShowedAndNothingElse) {
    for (const char* file : {"cache/a", "cache/folder/b", "cache/keep.me", "beside/c"})
        home.makeFile(file);
    for (const auto action : {CleanupAction::deletePermanently, CleanupAction::trash}) {
        Rule rule = ruleOn("cache", [](RuleFilter& filter) { filter.excludeGlobs = {"keep.*"}; });
        rule.action = action;
        const auto result = execute(plan(rule).value(), rule);
        EXPECT_EQ(result.stop, std::nullopt);
        ASSERT_EQ(result.outcomes.size(), 2U);
        for (const auto& outcome : result.outcomes) {
            EXPECT_EQ(outcome.status, action == CleanupAction::trash ? Status::trashed : Status::deleted);
            EXPECT_EQ(outcome.bytes, 4096);
            EXPECT_EQ(outcome.message, std::nullopt);
            EXPECT_EQ(outcome.trashPath.has_value(), action == CleanupAction::trash);
            EXPECT_TRUE(!outcome.trashPath || fs::exists(*outcome.trashPath));
        }
        EXPECT_THAT(home.names("cache"), ElementsAre("keep.me"));
        for (const char* file : {"cache/a", "cache/folder/b"})
            home.makeFile(file);
    }
    EXPECT_TRUE(fs::exists(home / "beside/c"));
}

TEST_F(CleanupExecutorTest, leavesEachItemThatIsNotWhatThePreviewSaw) {
    struct Case {
        const char* name;
        std::function<void()> change;
        Status status;
        std::string message;
    };
    const auto filter = [](RuleFilter& rule) { rule.minAgeDays = 7, rule.excludeGlobs = {"*.keep"}; };
    const std::string left = ", so Vostrel left it alone.";
    const std::vector<Case> cases{
        {"file", [&] { fs::remove(home / "cache/file"); }, Status::changed, "It was gone before Vostrel reached it."},
        {"file", [&] { fs::remove(home / "cache/file"), home.makeLink("cache/file", home / "victim"); },
         Status::changed, "It became a link after the preview" + left},
        {"file", [&] { replace("cache/file"); }, Status::changed, "It was replaced after the preview" + left},
        {"folder", [&] { replace("cache/folder"); }, Status::changed, "It was replaced after the preview" + left},
        {"file", [&] { setAge("cache/file", -1s); }, Status::changed, "It changed after the preview" + left},
        {"file", [&] { setAge("cache/file", days(7) - 1s); }, Status::changed,
         "It is no longer older than 7 days" + left},
        {"folder", [&] { setAge("cache/folder/sub/inside", days(1)); }, Status::changed,
         "It is no longer older than 7 days" + left},
        {"folder", [&] { home.makeFile("cache/folder/sub/a.keep"), setAge("cache/folder/sub", days(9)); },
         Status::changed, "It now holds something Vostrel never removes, so it left it alone."},
        {"folder", [&] { home.makeFile("cache/folder/My.photoslibrary/x"), setAge("cache/folder", days(9)); },
         Status::changed, "It now holds something Vostrel never removes, so it left it alone."},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.message);
        for (const char* file : {"cache/file", "cache/folder/sub/inside", "victim"}) {
            home.makeFile(file);
            setAge(file, days(20));
        }
        const Rule rule = deleting("cache", filter);
        const CleanupPlan seen = plan(rule).value();
        ASSERT_EQ(seen.items.size(), 2U);
        tested.change();
        operations.touched.clear();
        const auto result = execute(seen, rule);
        const auto& outcome = result.outcomes.at(std::string_view(tested.name) == "file" ? 0 : 1);
        EXPECT_EQ(outcome.path, home / "cache" / tested.name);
        EXPECT_EQ(outcome.status, tested.status);
        EXPECT_EQ(outcome.message, tested.message);
        EXPECT_THAT(operations.touched, testing::Not(testing::Contains("cache/" + std::string(tested.name))));
        EXPECT_EQ(home.read("victim"), "content");
        fs::remove_all(home / "cache");
    }
}

TEST_F(CleanupExecutorTest, leavesWhatChangedInTheLastTenMinutesWhateverTheRuleSays) {
    for (const char* file : {"cache/file", "cache/folder/inside"})
        home.makeFile(file);
    const Rule rule = deleting("cache");
    CleanupPlan seen = plan(rule).value();
    for (const auto& [age, status] : {std::pair(599s, Status::changed), {600s, Status::deleted}}) {
        // By the status change, which cannot be set: the clock is moved instead.
        Date last;
        for (const char* path : {"cache/folder", "cache/folder/inside", "cache/file"})
            last = std::max(last, statusOfPath(home / path)->changed);
        now = last + age;
        seen.createdAt = now;
        for (const auto& outcome : execute(seen, rule).outcomes) {
            EXPECT_EQ(outcome.status, status);
            EXPECT_EQ(outcome.message.value_or(""),
                      status == Status::changed ? "It changed in the last 10 minutes, so Vostrel left it alone." : "");
        }
    }
}

TEST_F(CleanupExecutorTest, holdsThePlanAndTheRuleToTheirLimits) {
    for (const char* file : {"cache/file.log", "cache/folder/inside", "elsewhere/x"})
        home.makeFile(file);
    const Rule rule = deleting("cache");
    const CleanupPlan seen = plan(rule).value();
    struct Case {
        const char* message;
        std::function<void(CleanupPlan&, CleanupExecutor::Order&)> change;
    };
    const std::vector<Case> cases{
        {"This rule's folders are inside one another, so Vostrel left everything alone.",
         [&](auto& plan, auto&) {
             plan.roots.push_back(plan.roots.front());
             plan.roots.back().url = home / "cache/folder";
         }},
        {"A folder this rule cleans was replaced after the preview, so Vostrel left it alone.",
         [](auto& plan, auto&) { plan.roots.front().identity.inode += 1; }},
        {"This rule may only move items to the Trash, so Vostrel left it alone.",
         [](auto& plan, auto&) { plan.roots.front().trashOnly = true; }},
        {"It is not inside a folder that this rule cleans, so Vostrel left it alone.",
         [&](auto& plan, auto&) {
             for (auto& item : plan.items)
                 item.url = home / "elsewhere/x";
         }},
        {"Its name is not one this rule cleans, so Vostrel left it alone.",
         [](auto&, auto& order) { order.filter.includeGlobs = {"*.bin"}; }},
        {"It is not a screenshot file, so Vostrel left it alone.",
         [](auto& plan, auto&) { plan.roots.front().screenshotFolder = true; }},
        {"It is not one of the files this rule was made for, so Vostrel left it alone.",
         [](auto&, auto& order) { order.filter.pinnedFiles = {PinnedFile{}}; }},
        {"A sentence of the gate.",
         [](auto&, auto& order) { order.itemGate = [](const PlannedItem&) { return "A sentence of the gate."; }; }},
        {"The folder it was in changed after the preview, so Vostrel left it alone.",
         [](auto& plan, auto&) {
             for (auto& item : plan.items)
                 item.parent.inode += 1;
         }},
    };
    for (const Case& tested : cases) {
        CleanupPlan changed = seen;
        auto order = orderOf(rule);
        tested.change(changed, order);
        for (const auto& outcome : executor.execute(changed, order, control).outcomes) {
            EXPECT_EQ(outcome.message, tested.message);
            EXPECT_EQ(outcome.status, Status::refused) << tested.message;
        }
    }
    EXPECT_THAT(operations.touched, IsEmpty());
}

TEST_F(CleanupExecutorTest, saysWhatBecameOfAMoveToTheTrashThatCannotBeConfirmed) {
    home.makeFile("cache/file");
    home.makeFile("other");
    const Rule rule = ruleOn("cache");
    const CleanupPlan seen = plan(rule).value();
    const std::string end = ". Look for it in the Trash.";
    const std::pair<std::optional<fs::path>, std::string> cases[] = {
        {std::nullopt, "macOS did not say where it went"},
        {home / "nowhere", "nothing is at " + (home / "nowhere").native()},
        {home / "other", (home / "other").native() + " is a different item"},
    };
    for (const auto& [place, why] : cases) {
        operations.onTrash = [&place = place](const fs::path&) { return place; };
        const auto outcome = execute(seen, rule).outcomes.at(0);
        EXPECT_EQ(outcome.status, Status::failed);
        EXPECT_EQ(outcome.message, "Vostrel could not confirm it reached the Trash: " + why + end);
        EXPECT_EQ(outcome.trashPath, place);
    }
}

TEST_F(CleanupExecutorTest, stopsBeforeTheFirstEntryAndAttemptsNoLaterItem) {
    for (const char* file : {"cache/a/1", "cache/b/1", "cache/c/1"})
        home.makeFile(file);
    Rule rule = deleting("cache");
    rule.pauseWhileRunning = {"com.apple.dt.Xcode"};
    // It opens while the first item is deleted, and is noticed at the next look.
    operations.onRemove = [&](const fs::path&) {
        apps.running = {"com.apple.dt.Xcode"};
        now = now + 1s;
    };
    const auto result = execute(plan(rule).value(), rule);
    ASSERT_TRUE(result.stop.has_value());
    EXPECT_EQ(result.outcomes.at(0).status, Status::failed);
    EXPECT_EQ(result.outcomes[0].message, "Nothing was deleted. Stopped because Xcode opened.");
    for (const std::size_t later : {1U, 2U})
        EXPECT_EQ(result.outcomes.at(later).status, Status::notAttempted);
    EXPECT_THAT(operations.touched, testing::SizeIs(1));
    EXPECT_THAT(home.names("cache"), testing::SizeIs(3));
}

class BuildFolderRemovalTest : public CleanupExecutorTest {
protected:
    [[nodiscard]] Rule scanning(ArtifactKind kind) const {
        Rule rule;
        rule.target = ProjectScanTarget{{home / "code"}, {kind}, 30};
        rule.action = CleanupAction::deletePermanently;
        return rule;
    }
    void makeNodeProject() const {
        home.makeFile("code/app/package.json");
        home.makeFile("code/app/node_modules/a/package.json");
        home.makeFile("code/app/node_modules/.package-lock.json", R"({"packages": {"node_modules/a": {}}})");
    }
};

TEST_F(BuildFolderRemovalTest, leavesABuildFolderWhoseProjectOrContentIsNotAsThePreviewSaw) {
    using Measure = std::optional<Date>;
    const std::string left = ", so Vostrel left it alone.";
    struct Case {
        std::string message;
        std::function<Measure(Date seen)> measure;
        std::function<void()> change = [] {};
    };
    const auto asSeen = [](Date seen) { return Measure(seen); };
    const std::vector<Case> cases{
        {"Vostrel could not check its project again, so it left it alone.", [](Date) { return Measure(); }},
        {"Its project changed after the preview" + left, [](Date seen) { return Measure(seen + 1ns); }},
        {"Its project changed in the last 30 days" + left, asSeen, [&] { now = now - days(11); }},
        {"Something in it changed in the last 30 days" + left, asSeen,
         [&] { setAge("code/app/node_modules/a/package.json", days(10)); }},
        {"The file that marks it as build output is no longer beside it" + left, asSeen,
         [&] { fs::remove(home / "code/app/package.json"); }},
        {"It does not look like a folder " + factsOf(ArtifactKind::nodeModules).toolName() + " made" + left, asSeen,
         [&] { home.makeFile("code/app/node_modules/mine/notes.txt"); }},
    };
    for (const Case& tested : cases) {
        makeNodeProject();
        const Date present = now;
        const Rule rule = scanning(ArtifactKind::nodeModules);
        const CleanupPlan seen = plan(rule).value();
        ASSERT_EQ(seen.items.size(), 1U) << tested.message;
        executor.measureProject = [&](const ProjectQuestion&) {
            return ProjectMeasure{tested.measure(seen.items[0].project->newestSource), {}};
        };
        tested.change();
        const auto outcome = execute(seen, rule).outcomes.at(0);
        EXPECT_EQ(outcome.message, tested.message);
        EXPECT_EQ(outcome.status, Status::changed);
        now = present;
        fs::remove_all(home / "code");
    }
    EXPECT_THAT(operations.touched, IsEmpty());
}

TEST_F(BuildFolderRemovalTest, takesAllBuildFoldersOfAProjectAndNoticesWhatElseHappensMeanwhile) {
    for (const bool isDisturbed : {false, true}) {
        for (const char* file : {"pyproject.toml", "a/m.py", "a/__pycache__/m.cpython-311.pyc", "b/n.py",
                                 "b/__pycache__/n.cpython-311.pyc"})
            home.makeFile(std::string("code/tool/") + file);
        const Rule rule = scanning(ArtifactKind::pycache);
        const CleanupPlan seen = plan(rule).value();
        ASSERT_EQ(seen.items.size(), 2U);
        operations.onRemove = [&](const fs::path& item) {
            now = now + ProjectChecks::measureLifetime;
            if (isDisturbed) home.makeFile((item.parent_path() / "new.py").lexically_relative(home.path()).native());
        };
        const auto outcomes = execute(seen, rule).outcomes;
        EXPECT_EQ(outcomes[0].status, Status::deleted);
        EXPECT_EQ(outcomes[1].status, isDisturbed ? Status::changed : Status::deleted);
        EXPECT_EQ(outcomes[1].message.value_or(""),
                  isDisturbed ? "Its project changed after the preview, so Vostrel left it alone." : "");
        fs::remove_all(home / "code");
    }
}

TEST_F(CleanupExecutorTest, holdsItemsOfATrashToTheDatesOfTheirInfoFilesAndForgetsThem) {
    const auto trash = [&](const std::string& name, Date deleted) {
        home.makeFile(".local/share/Trash/files/" + name);
        home.makeFile(".local/share/Trash/info/" + name + ".trashinfo", trashInfoText(home / name, deleted));
    };
    trash("old", now - days(40));
    trash("restored", now - days(40));
    const Rule rule = ruleOf("old-trash");
    const CleanupPlan seen = plan(rule).value();
    ASSERT_EQ(seen.items.size(), 2U);
    trash("restored", now - days(1));
    for (const auto& outcome : execute(seen, rule).outcomes) {
        const bool isOld = outcome.path.filename() == "old";
        EXPECT_EQ(outcome.status, isOld ? Status::deleted : Status::changed);
        EXPECT_EQ(outcome.message.value_or(""),
                  isOld ? "" : "It is no longer older than 30 days, so Vostrel left it alone.");
    }
    EXPECT_THAT(home.names(".local/share/Trash/info"), ElementsAre("restored.trashinfo"));
}

}  // namespace
}  // namespace vostrel
