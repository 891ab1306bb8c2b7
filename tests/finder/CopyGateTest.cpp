#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "finder/CopyGate.h"
#include "finder/FinderHome.h"

namespace vostrel {
namespace {

using testing::Optional;
using testing::StrEq;

class CopyGateTest : public testing::Test, protected FinderHome {
protected:
    [[nodiscard]] std::set<std::filesystem::path> paths(const std::vector<std::string>& names) const {
        std::set<std::filesystem::path> paths;
        for (const std::string& name : names)
            paths.insert(home / name);
        return paths;
    }
    [[nodiscard]] PlannedItem planned(const std::string& name) const {
        PlannedItem item;
        item.url = home / name;
        const auto status = statusOfPath(item.url);
        item.device = status ? status->device : 0;
        item.fileID = status ? status->inode : 0;
        return item;
    }
};

TEST_F(CopyGateTest, letsACopyGoOnlyBesideOneThatStaysAndIsStillTheSame) {
    struct Case {
        const char* what;
        std::vector<std::string> chosen;
        std::function<void()> change;
        const char* sentence;
    };
    FinderResult result;
    const auto write = [&](const std::string& name, const std::string& content) { home.makeFile(name, content); };
    const auto replaced = [&](const std::string& name, char seed) {
        make("fresh", 200'000, seed);
        std::filesystem::rename(home / "fresh", home / name);
    };
    const Case cases[] = {
        {"nothing happened", {"b"}, [] {}, nullptr},
        {"another copy is gone", {"b"}, [&] { std::filesystem::remove(home / "a"); }, nullptr},
        {"all others were chosen", {"a", "b", "c"}, [] {}, CopyGate::noCopyStays},
        {"those that stay are gone",
         {"b"},
         [&] { std::filesystem::remove(home / "a"), std::filesystem::remove(home / "c"); },
         CopyGate::noCopyLeft},
        {"the one that stays is written to",
         {"b", "c"},
         [&] { write("a", std::string(199'999, 'x') + "y"); },
         CopyGate::noCopyLeft},
        {"the one that stays is another file", {"b", "c"}, [&] { replaced("a", 'y'); }, CopyGate::noCopyLeft},
        {"the one that stays is a link to it",
         {"b", "c"},
         [&] { std::filesystem::remove(home / "a"), std::filesystem::create_symlink(home / "b", home / "a"); },
         CopyGate::noCopyLeft},
        {"the one that stays is another name of it",
         {"b", "c"},
         [&] { std::filesystem::remove(home / "a"), std::filesystem::create_hard_link(home / "b", home / "a"); },
         CopyGate::changed},
        {"it and the one that stays are swapped",
         {"b", "c"},
         [&] {
             std::filesystem::rename(home / "a", home / "t"), std::filesystem::rename(home / "b", home / "a");
             std::filesystem::rename(home / "t", home / "b");
         },
         CopyGate::changed},
        {"it was written to", {"b"}, [&] { write("b", std::string(200'000, 'y')); }, CopyGate::changed},
        {"it is another file", {"b"}, [&] { replaced("b", 'x'); }, CopyGate::changed},
        {"it is gone", {"b"}, [&] { std::filesystem::remove(home / "b"); }, CopyGate::changed},
        {"it was not found", {"b"}, [] {}, CopyGate::notFound},
    };
    for (const Case& tested : cases) {
        std::filesystem::remove_all(home.path());
        for (const char* name : {"a", "b", "c"})
            make(name, 200'000);
        result = find();
        ASSERT_EQ(result.groups.size(), 1U);
        CopyGate gate(result, paths(tested.chosen), {});
        tested.change();
        const auto sentence = gate(planned(tested.sentence == CopyGate::notFound ? "elsewhere" : "b"));
        if (tested.sentence == nullptr) {
            EXPECT_EQ(sentence, std::nullopt) << tested.what;
        } else {
            EXPECT_THAT(sentence, Optional(StrEq(tested.sentence))) << tested.what;
        }
    }
}

TEST_F(CopyGateTest, ofTwoSearchesAtOnceOneLeavesWhatTheOtherKeeps) {
    for (const char* name : {"a", "b"})
        make(name, 200'000);
    const FinderResult result = find();
    CopyGate one(result, paths({"b"}), {});
    CopyGate other(result, paths({"a"}), {});
    EXPECT_EQ(one(planned("b")), std::nullopt);
    EXPECT_THAT(other(planned("a")), Optional(StrEq(CopyGate::noCopyLeft)));
}

TEST_F(CopyGateTest, comparesEveryByteWhateverTheDigestsSaid) {
    make("a", 300'000);
    home.makeFile("b", std::string(299'999, 'x') + "y");
    class Equal final : public FileDigesting {
        [[nodiscard]] DigestResult digest(const DuplicatePoolEntry&, DigestStage,
                                          const std::function<bool()>&) const override {
            return {DigestResult::Kind::digest, {}};
        }
    };
    scanner.digester = std::make_shared<Equal>();
    const FinderResult result = find();
    ASSERT_EQ(result.groups.size(), 1U);
    EXPECT_THAT(CopyGate(result, paths({"b"}), {})(planned("b")), Optional(StrEq(CopyGate::noCopyLeft)));
    // One that may be gone tomorrow, or lies on another disk, is none that stays.
    for (const bool isElsewhere : {false, true}) {
        FinderResult other = result;
        DuplicateCopy& kept = other.groups.front().copies.front();
        kept.mayVanish = !isElsewhere;
        if (isElsewhere) kept.stamp.device += 1;
        EXPECT_THAT(CopyGate(other, paths({"b"}), {}).refusalFor(home / "b"), Optional(StrEq(CopyGate::noCopyStays)));
    }
    EXPECT_THAT(CopyGate(result, paths({"a", "b"}), {}).refusalFor(home / "a"), Optional(StrEq(CopyGate::noCopyStays)));
}

}  // namespace
}  // namespace vostrel
