#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <set>

#include "finder/DuplicateFinder.h"

namespace vostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = DigestResult::Kind;

/// Files whose content is a word: equal stages give equal digests. Notes what is read.
class Words final : public FileDigesting {
public:
    struct Word {
        char first = 'a';
        char last = 'a';
        char middle = 'a';
        Kind kind = Kind::digest;
    };
    std::map<std::string, Word> words;

    [[nodiscard]] DigestResult digest(const DuplicatePoolEntry& entry, DigestStage stage,
                                      const std::function<bool()>& /*isCancelled*/) const override {
        const std::string name = entry.path.full().filename();
        const Word& word = words.at(name);
        const std::scoped_lock held(lock);
        read[stage].insert(name);
        DigestResult result{.kind = stage == failing ? word.kind : Kind::digest, .digest = {}};
        result.digest.bytes[0] = static_cast<std::uint8_t>(word.first);
        if (stage != DigestStage::firstBlock) result.digest.bytes[1] = static_cast<std::uint8_t>(word.last);
        if (stage == DigestStage::whole) result.digest.bytes[2] = static_cast<std::uint8_t>(word.middle);
        return result;
    }

    DigestStage failing = DigestStage::whole;
    mutable std::mutex lock;
    mutable std::map<DigestStage, std::set<std::string>> read;
};

class DuplicateFinderTest : public testing::Test {
protected:
    DuplicatePoolEntry& add(const std::string& name, const Words::Word& word, std::int64_t size = 1'000'000) {
        digester.words[name] = word;
        FinderStamp stamp;
        stamp.inode = pool.size() + 1;
        stamp.size = size;
        stamp.allocated = size;
        stamp.modified = Date::fromSeconds(static_cast<std::int64_t>(pool.size()));
        return pool.emplace_back(FinderPath("/f/" + name), stamp);
    }
    std::vector<std::vector<std::string>> find() {
        outcome = finder.find(pool, nullptr, budget);
        std::vector<std::vector<std::string>> groups;
        for (const DuplicateGroup& group : outcome.groups) {
            auto& names = groups.emplace_back();
            for (const DuplicateCopy& copy : group.copies)
                names.push_back(copy.path.full().filename());
        }
        return groups;
    }

    Words digester;
    std::vector<DuplicatePoolEntry> pool;
    WalkBudget budget;
    DuplicateOutcome outcome;
    DuplicateFinder finder{.digester = digester,
                           .isInICloud = [](const auto&) { return false; },
                           .trashBlock = [](const auto&) { return std::nullopt; }};
};

TEST_F(DuplicateFinderTest, readsNoMoreThanItTakes) {
    add("alone", {}, 3'000'000);
    add("other beginning", {.first = 'b'});
    add("other end", {.last = 'b'});
    add("other middle", {.middle = 'b'});
    add("one", {});
    add("two", {});
    add("short", {}, 60'000);
    add("shorter", {}, 60'000);
    add("little", {}, 10);
    add("less", {}, 10);
    finder.limits.minBytes = 50'000;
    EXPECT_THAT(find(), ElementsAre(ElementsAre("one", "two"), ElementsAre("short", "shorter")));
    EXPECT_TRUE(outcome.finished);
    using enum DigestStage;
    EXPECT_THAT(digester.read[firstBlock], testing::SizeIs(7));
    EXPECT_THAT(digester.read[lastBlock], ElementsAre("one", "other end", "other middle", "two"));
    EXPECT_THAT(digester.read[whole], ElementsAre("one", "other middle", "two"));
}

TEST_F(DuplicateFinderTest, readsNoFileOnWhoseLikeIsGone) {
    finder.limits.workers = 1;
    add("gone", {.kind = Kind::unreadable});
    add("left", {});
    EXPECT_THAT(find(), IsEmpty());
    EXPECT_THAT(digester.read[DigestStage::whole], ElementsAre("gone"));
    EXPECT_EQ(outcome.changedOrUnreadable, 1);
    EXPECT_TRUE(outcome.finished);
}

TEST_F(DuplicateFinderTest, takesFilesOfOneSpaceForOne) {
    const auto clone = [&](const std::string& name, std::optional<std::uint32_t> count, std::int64_t ofItsOwn) {
        FinderStamp& stamp = add(name, {}).stamp;
        stamp.cloneID = 5;
        stamp.cloneRefCount = count;
        stamp.privateBytes = ofItsOwn;
    };
    clone("original", 2, 0);
    clone("clone", 2, 100);
    clone("written anew", 2, 1'000'000);
    clone("last of its clones", 1, 0);
    add("file", {});
    add("again, by a bind mount", {}).stamp.inode = 5;
    DuplicatePoolEntry& elsewhere = add("again, by another mount", {});
    elsewhere.stamp = pool[4].stamp;
    elsewhere.stamp.device = 7;
    EXPECT_THAT(find(), ElementsAre(ElementsAre("original", "written anew", "last of its clones", "file")));
    EXPECT_EQ(outcome.sharedSpaceFiles, 3);
    // What only the file system knows shows when the contents are known to be equal.
    finder.sharedBlocks = [](const std::filesystem::path& path) {
        return path.filename() == "original" ? std::nullopt : std::optional(SHA256Digest{});
    };
    EXPECT_THAT(find(), ElementsAre(ElementsAre("original", "written anew")));
    EXPECT_EQ(outcome.sharedSpaceFiles, 5);
}

TEST_F(DuplicateFinderTest, leavesOutWhatACloudKeepsOrMayKeep) {
    for (const char* name : {"a", "b", "cloud", "unknown"})
        add(name, {});
    finder.isInICloud = [](const std::filesystem::path& path) -> std::optional<bool> {
        if (path.filename() == "unknown") return std::nullopt;
        return path.filename() == "cloud";
    };
    EXPECT_THAT(find(), ElementsAre(ElementsAre("a", "b")));
    EXPECT_EQ(outcome.inICloud, 1);
    EXPECT_EQ(outcome.couldNotCheckICloud, 1);
}

TEST_F(DuplicateFinderTest, stoppedGivesOnlyGroupsOfWhichItKnowsAll) {
    finder.limits.workers = 1;
    for (const char* name : {"a1", "a2", "a3"})
        add(name, {});
    for (const char* name : {"b1", "b2", "b3"})
        add(name, {}, 2'000'000);
    int asked = 0;
    std::size_t stoppedWithGroups = 0;
    for (int stop = 0; stop < 40; ++stop) {
        asked = 0;
        budget.isCancelled = [&] { return asked++ >= stop; };
        const auto groups = find();
        for (const auto& group : groups)
            EXPECT_THAT(group, testing::SizeIs(3)) << stop;
        EXPECT_EQ(outcome.finished, asked <= stop) << stop;
        stoppedWithGroups += !outcome.finished && !groups.empty() ? 1 : 0;
    }
    EXPECT_GT(stoppedWithGroups, 0U);
    EXPECT_TRUE(outcome.finished);
}

}  // namespace
}  // namespace vostrel
