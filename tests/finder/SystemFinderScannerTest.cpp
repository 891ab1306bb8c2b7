#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <random>
#include <set>

#include "finder/FinderHome.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class SystemFinderScannerTest : public testing::Test, protected FinderHome {};

TEST_F(SystemFinderScannerTest, offersNothingOfToolsPackagesRepositoriesAndTheTrash) {
    make("films/large", 80'000, 'a');
    make("films/deep/er/small", 30'000, 'b');
    for (const char* path : {"code/.git/objects/pack", "code/film", "code/deep/film", "bare.git/film", "App.app/film",
                             "node_modules/a/film", ".cache/film", "venv/film", "venv/lib/film", "tagged/film",
                             ".local/share/Trash/files/film"})
        make(path, 80'000);
    make("venv/pyvenv.cfg", 1);
    make("tagged/CACHEDIR.TAG", 1);
    make("bare.git/HEAD", 1);
    home.makeFolder("bare.git/objects");
    home.makeFolder("bare.git/refs");
    home.makeLink("films/link", home / "films/large");
    ::mkfifo((home / "films/pipe").c_str(), 0600);
    std::filesystem::create_hard_link(home / "films/large", home / ".cache/large");
    // Another name of a file is no other file.
    std::filesystem::create_hard_link(home / "films/large", home / "films/largest");

    const auto found = find();
    EXPECT_THAT(names(found.large), ElementsAre("films/large"));
    EXPECT_THAT(names(found.old), ElementsAre("films/large", "films/deep/er/small"));
    EXPECT_THAT(found.groups, IsEmpty());
    EXPECT_EQ(found.walk.repositoriesSkipped, 2);
    EXPECT_EQ(found.walk.packagesSkipped, 1);
    EXPECT_EQ(found.walk.linksNotFollowed, 1);
    EXPECT_EQ(found.walk.largeCount, 1);
    EXPECT_EQ(found.ending, FinderResult::Ending::complete);

    // A folder that was chosen is searched, but what may be somebody else's is not to be moved away.
    const std::map<std::string, const char*> blocks{{"code", "It is part of a repository."},
                                                    {"code/deep", "It is part of a repository."},
                                                    {"App.app", "It is part of a package."},
                                                    {"bare.git", "It is part of a repository."},
                                                    {"venv/lib", "It is managed by a tool or an app."},
                                                    {".cache", "It is managed by a tool or an app."}};
    for (const auto& [root, block] : blocks) {
        const auto inside = find({root});
        ASSERT_THAT(inside.large, testing::Not(IsEmpty())) << root;
        for (const FinderFile& file : inside.large)
            EXPECT_THAT(file.trashBlock, testing::Optional(std::string(block))) << relative(file.path);
    }
    make("films/disk.iso", 80'000);
    EXPECT_TRUE(find({"films"}).large.front().trashBlock);
}

TEST_F(SystemFinderScannerTest, keepsTheLargestWithinItsBoundsAndCountsTheRest) {
    for (int number = 1; number <= 9; ++number)
        make("film " + std::to_string(number), static_cast<std::size_t>(number) * 100'000, static_cast<char>(number));
    scanner.limits.maxListed = 2;
    scanner.limits.oldCandidates = 3;
    scanner.limits.poolFiles = 4;
    const auto found = find();
    EXPECT_THAT(names(found.large), ElementsAre("film 9", "film 8"));
    EXPECT_THAT(names(found.old), ElementsAre("film 9", "film 8"));
    EXPECT_EQ(found.walk.largeCount, 9);
    EXPECT_EQ(found.walk.oldOverflow, 6);
    EXPECT_EQ(found.walk.poolOverflow, 5);
}

TEST_F(SystemFinderScannerTest, searchesEachFolderOnceAndSaysWhichItCouldNot) {
    make("a/one", 80'000, '1');
    make("a/.hidden/two", 80'000, '2');
    make("file", 10);
    home.makeLink("link", home / "a");
    const auto found = find({"a", "a/.hidden", "a", "link", "file", "nothing"});
    EXPECT_THAT(names(found.large), UnorderedElementsAre("a/one", "a/.hidden/two"));
    std::vector<std::string> problems;
    for (const FinderRootState& root : found.walk.roots) {
        const auto* unsearched = std::get_if<FinderUnsearchedRoot>(&root);
        problems.push_back(unsearched ? std::to_string(static_cast<int>(unsearched->problem.kind)) : "");
    }
    EXPECT_THAT(problems, ElementsAre("", "", "", "3", "1", "2"));
}

TEST_F(SystemFinderScannerTest, goesByTheLastUseWhereItIsKnownAndSaysWhatItDidNotCheck) {
    make("used", 40'000, '1');
    make("unused", 40'000, '2');
    make("unknown", 40'000, '3');
    scanner.lastUsed = [&](const std::filesystem::path& file) -> std::optional<Date> {
        if (file.filename() == "used") return later;
        return file.filename() == "unused" ? std::optional(Date::fromSeconds(1)) : std::nullopt;
    };
    auto found = find();
    ASSERT_THAT(names(found.old), ElementsAre("unknown", "unused"));
    EXPECT_EQ(found.old.front().lastOpened->source, LastOpened::Source::modifiedOrAdded);
    EXPECT_EQ(found.old.back().lastOpened->source, LastOpened::Source::spotlight);
    // Files of today are not old.
    later = Date::now();
    EXPECT_THAT(find().old, IsEmpty());

    later = later + std::chrono::hours(24 * 400);
    scanner.limits.datesSeconds = -1;
    found = find();
    EXPECT_EQ(found.oldNotChecked, 3);
    EXPECT_EQ(found.ending, FinderResult::Ending::deadline);
    scanner.limits.walkSeconds = -1;
    EXPECT_TRUE(find().walk.stopped);
    EXPECT_EQ(find({}, [] { return true; }).ending, FinderResult::Ending::cancelled);
}

TEST_F(SystemFinderScannerTest, findsTheGroupsThatAComparisonOfAllContentsFinds) {
    std::mt19937 random(7);
    std::map<std::string, std::set<std::string>> byContent;
    for (int number = 0; number < 300; ++number) {
        // Some differ in the middle only, or at one end, or in length.
        const std::size_t size = 140'000 + random() % 3;
        std::string content(size, 'x');
        for (const std::size_t place : {std::size_t(0), size / 2, size - 1})
            content[place] = static_cast<char>('a' + random() % 2);
        const std::string path = "d" + std::to_string(number % 7) + "/" + std::to_string(number);
        home.makeFile(path, content);
        byContent[content].insert(path);
    }
    std::set<std::set<std::string>> expected;
    for (const auto& [_, paths] : byContent) {
        if (paths.size() > 1) expected.insert(paths);
    }
    std::vector<DuplicateGroup> first;
    for (const int workers : {1, 2, 5}) {
        scanner.limits.hashWorkers = workers;
        const auto found = find();
        std::set<std::set<std::string>> groups;
        for (const DuplicateGroup& group : found.groups) {
            const auto copies = names(group.copies);
            groups.emplace(copies.begin(), copies.end());
        }
        EXPECT_EQ(groups, expected);
        EXPECT_TRUE(found.duplicates.finished);
        if (first.empty()) first = found.groups;
        EXPECT_EQ(found.groups, first) << "the same for any number of workers";
    }
    EXPECT_TRUE(std::ranges::is_sorted(first, std::greater(), &DuplicateGroup::reclaimableBytes));
}

}  // namespace
}  // namespace vostrel
