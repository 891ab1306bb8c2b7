#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>

#include "cleaning/CleanupPlanner.h"
#include "cleaning/PlannerHome.h"
#include "filesystem/FileStat.h"
#include "support/SumOnDisk.h"

namespace vostrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using testing::HasSubstr;

using Edit = std::function<void(RuleFilter&)>;

class CleanupPlannerTest : public testing::Test, protected PlannerHome {
protected:
    void make(const std::vector<std::string>& files, const std::string& content = "x") const {
        for (const auto& file : files)
            home.makeFile(file, content);
    }
    void replaceFolder(std::string_view relative) const {
        std::filesystem::rename(home / relative, home / (std::string(relative) + ".before"));
        home.makeFolder(relative);
    }
    CleanupPlan planned(const Rule& rule) const { return plan(rule).value(); }
};

TEST_F(CleanupPlannerTest, recordsWhichFolderItIsAndWhatTheDiskDates) {
    make({"cache/folder/inner/a"});
    const CleanupPlan plan = planned(ruleOn("cache"));
    const PlannedItem& folder = plan.items.at(0);
    EXPECT_EQ(folder.fileID, FileStat::read(home / "cache/folder")->identity.inode);
    EXPECT_EQ(folder.parent.inode, plan.roots.at(0).identity.inode);
    EXPECT_FALSE(plan.limitedDates);
    planner.volume.fileSystemType = [](int) { return "exfat"; };
    EXPECT_TRUE(planned(ruleOn("cache")).limitedDates) << "the disk does not record arrivals";
}

TEST_F(CleanupPlannerTest, saysOfEachItemLeftOutWhy) {
    make({"cache/fine", "cache/holds excluded/deep/keep.me", "cache/keep.me", "cache/Pictures.photoslibrary/database",
          "cache/holds a library/in/My.PhotosLibrary/database", "cache/both/keep.me", "cache/both/x.photoslibrary/a",
          "cache/cloud/file.dataless", "cache/mounted/inner/file.mounted", "cache/closed/inner/file",
          "cache/moving/file", "cache/recent/old/new"});
    home.makeLink("cache/link", home / "elsewhere");
    setAge("cache/recent/old/new", 9min);
    source->onOpen = [this](const std::string& path) {
        if (path.ends_with("/moving")) make({"cache/moving/another"});
        return path.ends_with("/closed/inner") ? EACCES : 0;
    };
    // A file that arrives before its folder is listed is nothing new; one that arrives after is.
    std::atomic<bool> wasListed = false;
    source->onEntry = [&](FolderEntry& entry) {
        if (entry.name == "file.dataless") entry.isDataless = true;
        if (entry.name == "file.mounted") entry.mountStatus = entryIsMountPoint;
        if (entry.name == "another" && !wasListed.exchange(true)) make({"cache/moving/third"});
    };
    const auto plan = planned(ruleOn("cache", [](RuleFilter& filter) { filter.excludeGlobs = {"KEEP.*"}; }));
    EXPECT_EQ(verdicts(plan), (Verdicts{{"cache/fine", "planned"},
                                        {"cache/link", "that is a link"},
                                        {"cache/holds excluded", "holding names you excluded"},
                                        {"cache/both", "holding names you excluded"},
                                        {"cache/Pictures.photoslibrary", "Vostrel never removes"},
                                        {"cache/holds a library", "Vostrel never removes"},
                                        {"cache/cloud", "not downloaded from iCloud"},
                                        {"cache/mounted", "on another disk"},
                                        {"cache/closed", "Vostrel could not read"},
                                        {"cache/moving", "changed while Vostrel was checking"},
                                        {"cache/recent", "changed in the last 10 minutes"}}));
    for (const auto& item : plan.skipped)
        EXPECT_EQ(item.refusal.has_value(), item.reason == SkipReason::protectedPlace) << item.url;
}

TEST_F(CleanupPlannerTest, goesByScopeNamesAgeAndSize) {
    make({"code/old.log", "code/sub/young.log", "code/sub/other.txt"});
    make({"code/sub/old.LOG"}, std::string(20'000, 'x'));
    setAge("code/old.log", days(20));
    setAge("code/sub/old.LOG", days(10));
    setAge("code/sub/young.log", days(10) - 1s);
    using Paths = std::vector<std::string>;
    constexpr auto allFiles = RuleScope::allFiles;
    const auto withTwins = [&](RuleFilter& filter) {
        home.makeFolder("code/twins");
        for (const char* name : {"code/twin", "code/twins/a", "code/twins/b"})
            std::filesystem::create_hard_link(home / "code/sub/old.LOG", home / name);
        filter.minSizeBytes = 20'480;
    };
    const std::pair<Edit, Paths> cases[] = {
        {[](RuleFilter&) {}, {"old.log", "sub"}},
        {[](auto& filter) { filter.includeGlobs = {"s?b"}; }, {"sub"}},
        {[](auto& filter) { filter.scope = allFiles; }, {"old.log", "sub/old.LOG", "sub/other.txt", "sub/young.log"}},
        {[](auto& filter) { filter.scope = allFiles, filter.includeGlobs = {"*.log"}, filter.minAgeDays = 10; },
         {"old.log", "sub/old.LOG"}},
        {[](auto& filter) { filter.minAgeDays = 150'000; }, {}},  // an age that no date has
        {[](auto& filter) { filter.scope = allFiles, filter.minSizeBytes = 20'480; }, {"sub/old.LOG"}},
        {withTwins, {"sub", "twin", "twins"}},  // each name of a file is as large as the file
    };
    for (const auto& [edit, paths] : cases) {
        Verdicts expected;
        for (const auto& path : paths)
            expected["code/" + path] = "planned";
        EXPECT_EQ(verdicts(planned(ruleOn("code", edit))), expected);
    }
}

TEST_F(CleanupPlannerTest, refusesARootWithTheSentenceOfTheFirstCheckThatFails) {
    const auto folder = home.makeFolder("root");
    make({"file", "Documents/jobs/x", "secret/other"});
    VolumeQuestions onFAT;
    onFAT.fileSystemType = [](int) { return "msdos"; };
    const auto replaced = [&](int open) {
        replaceFolder("root");
        return vostrel::volumeUUID(open);
    };
    const auto pointAt = [&](std::string_view path) {
        return [&, path](Rule& rule) { rule.target = FolderTarget{home / path}; };
    };
    const auto becomeALinkBeforeOpening = [&](std::string_view opened) {
        return [&, opened](Rule& rule) {
            std::filesystem::remove_all(home / "walked");
            rule.target = FolderTarget{home.makeFolder("walked/sub").parent_path()};
            source->onOpen = [&, opened](const std::string& path) {
                if (!path.ends_with(opened)) return 0;
                std::filesystem::remove_all(home / "walked");
                home.makeLink("walked", home / "secret");
                return 0;
            };
        };
    };
    const std::pair<const char*, std::function<void(Rule&)>> cases[] = {
        {"The folder does not exist", pointAt("gone")},
        {"The folder does not exist", pointAt("file/below")},
        {"The rule points at a file", pointAt("file")},
        {"as a whole. Choose a folder inside it.", pointAt("Documents")},
        {"has no matching", [](Rule& rule) { rule.filter.includeGlobs = {"[a"}; }},
        {"does not report a volume UUID", [&](Rule&) { planner.volume.volumeUUID = [](int) { return std::nullopt; }; }},
        {"is not a folder only you can change", [&](Rule&) { ::chmod(folder.c_str(), 0775); }},
        {"does not record when files",
         [&](Rule& rule) { planner.volume = onFAT, rule.filter.ageBasis = AgeBasis::added; }},
        {"was replaced or moved while Vostrel was checking it", [&](Rule&) { planner.volume.volumeUUID = replaced; }},
        {"was replaced or moved while Vostrel was checking it", becomeALinkBeforeOpening("/walked")},
        {"was replaced or moved while Vostrel was checking it", becomeALinkBeforeOpening("/walked/sub")},
    };
    for (const auto& [sentence, arrange] : cases) {
        SCOPED_TRACE(sentence);
        Rule rule = ruleOn("root");
        arrange(rule);
        const auto plan = planner.plan(rule, now);
        ASSERT_FALSE(plan);
        EXPECT_THAT(plan.error().sentence, HasSubstr(sentence));
        planner.volume = {};
        ::chmod(folder.c_str(), 0755);
    }
}

TEST_F(CleanupPlannerTest, stopsWheneverItIsCancelledAndNeverGivesPartOfAPlan) {
    const auto early = planner.plan(ruleOn("gone"), now, [] { return true; });
    ASSERT_FALSE(early);
    EXPECT_EQ(early.error().kind, PlanError::Kind::cancelled) << "before any folder is opened";

    constexpr int items = 60;
    for (int item = 0; item < items / 2; ++item)
        make({"cache/d" + std::to_string(item) + "/a/b", "cache/f" + std::to_string(item)});
    const Rule rule = ruleOn("cache");
    int polls = 0;
    ASSERT_TRUE(planner.plan(rule, now, [&] { return ++polls < 0; }));
    ASSERT_GT(polls, 2 * items) << "for each folder and for each item";
    for (int last = 1; last <= polls; ++last) {
        int asked = 0;
        const auto plan = planner.plan(rule, now, [&] { return ++asked >= last; });
        // With helpers the number of polls varies; what was never asked again finished.
        if (asked < last) continue;
        ASSERT_FALSE(plan);
        EXPECT_EQ(plan.error().sentence, "Stopped before it finished.");
    }
}

TEST_F(CleanupPlannerTest, countsEveryFileInItsProgress) {
    make({"cache/a", "cache/folder/b"});
    planner.progress = std::make_shared<ProgressBox<PlanProgress>>();
    (void)planned(ruleOn("cache"));
    EXPECT_EQ(planner.progress->read().files, 2);
    EXPECT_EQ(planner.progress->read().bytes, test::sumOnDisk(home / "cache").allocatedBytes);
}

TEST_F(CleanupPlannerTest, namesWhatItCouldNotMeasureInTime) {
    constexpr std::size_t folders = 20;
    for (std::size_t folder = 0; folder < folders; ++folder)
        make({"cache/f" + std::to_string(folder) + "/a"});
    make({"cache/file"});
    planner.helpers = 0;
    for (std::size_t stopAt = 3; stopAt < 3 * folders; stopAt += 7) {
        planner.clock = [&, looks = 0U]() mutable { return ++looks > stopAt ? now + 1h : now; };
        const auto plan = planned(ruleOn("cache"));
        // Either the listing was whole and every entry is spoken of, or the folder itself is said to be unfinished.
        auto said = verdicts(plan);
        const bool isWhole = !said.contains("cache");
        EXPECT_TRUE(isWhole ? said.size() == folders + 1 : said["cache"] == "not checked in time") << stopAt;
        EXPECT_LT(plan.items.size(), folders + 1);
    }
}

TEST_F(CleanupPlannerTest, judgesNoNamesOnceTheTimeIsUp) {
    constexpr std::size_t files = 600;
    for (std::size_t file = 0; file < files; ++file)
        make({"wide/" + std::to_string(file)});
    std::size_t seen = 0;
    source->onEntry = [&](FolderEntry&) { ++seen; };
    planner.clock = [&] { return seen == files ? now + 1h : now; };
    planner.helpers = 0;
    const auto plan = planned(ruleOn("wide"));
    EXPECT_GT(plan.items.size(), 0);
    EXPECT_LT(plan.items.size(), files / 2);
    EXPECT_EQ(verdicts(plan).size(), files + 1) << "every file, and the folder whose listing was cut off";
}

}  // namespace
}  // namespace vostrel
