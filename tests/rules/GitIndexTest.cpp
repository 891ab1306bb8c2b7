#include <gtest/gtest.h>

#include <random>

#include "rules/GitIndex.h"
#include "support/GitIndexBytes.h"
#include "support/Rounds.h"

namespace vostrel {
namespace {

const std::vector<std::string> fewNames{"a", "a/b", "build/x", "build/y/z"};

std::vector<GitIndexBytes> everyForm() {
    std::vector<GitIndexBytes> forms;
    for (const std::size_t idLength : {20U, 32U}) {
        for (const std::uint32_t version : {2U, 3U, 4U})
            forms.push_back({.version = version, .idLength = idLength, .flags = version > 2 ? 0x4000U : 0U});
    }
    return forms;
}

TEST(GitIndexTest, namesTheFoldersOfTrackedFilesInEveryForm) {
    const std::string longest = "src/" + std::string(4090, 'd') + "/f";  // longer than an entry's flags can say
    const std::vector<std::string> names{"a.c",     "build/x/a.class", "build2",
                                         "src/a.c", longest,           "\u00DCn\u00EF/target/a"};
    for (GitIndexBytes form : everyForm()) {
        form.extensions = GitIndexBytes::extension("TREE", "anything");
        SCOPED_TRACE(form.version * 100 + form.idLength);
        const auto index = GitIndex::parse(form.naming(names));
        ASSERT_TRUE(index);
        for (const char* tracked : {"build", "BUILD/x", "src", "u\u0308ni\u0308", "\u00DCn\u00EF/target"})
            EXPECT_TRUE(index->names(tracked)) << tracked;
        for (const char* other : {"a.c", "buil", "build2", "x", "build/x/a.class", "target"})
            EXPECT_FALSE(index->names(other)) << other;
        EXPECT_TRUE(GitIndex::parse(form.naming({})));
        form.mode = 0160000;
        EXPECT_TRUE(GitIndex::parse(form.naming({"in/build"}))->names("in/build")) << "another repository";
    }
}

TEST(GitIndexTest, takesNothingForAnIndexThatIsNotOneToItsEnd) {
    for (const GitIndexBytes& form : everyForm()) {
        const std::string whole = form.naming(fewNames);
        for (std::size_t cut = 0; cut < whole.size(); ++cut)
            ASSERT_FALSE(GitIndex::parse(whole.substr(0, cut))) << form.version << ": " << cut;
        EXPECT_FALSE(GitIndex::parse(whole + "more"));
    }
    const std::pair<const char*, GitIndexBytes> forms[] = {
        {"a version before", {.version = 1}},
        {"a version to come", {.version = 5}},
        {"flags that its version has not", {.flags = 0x4000}},
        {"an entry for a whole folder", {.version = 3, .mode = 0040000}},
        {"another index to be read with it", {.extensions = GitIndexBytes::extension("link", std::string(20, 'i'))}},
        {"entries for whole folders", {.extensions = GitIndexBytes::extension("sdir", "")}},
        {"an extension that is cut off", {.extensions = "TREE" + GitIndexBytes::number(9, 4) + "12345678"}},
    };
    for (const auto& [what, form] : forms)
        EXPECT_FALSE(GitIndex::parse(form.naming({"build/a"}))) << what;
    for (const auto& names : {std::vector<std::string>{"b", "a"}, {""}, {"/a"}, {"a/"}, {std::string(5000, 'n')}})
        EXPECT_FALSE(GitIndex::parse(GitIndexBytes().naming(names))) << names.front();
    EXPECT_FALSE(GitIndex::parse(std::string(GitIndex::longest + 1, '\0')));
}

TEST(GitIndexTest, readsAnyBytes) {
    std::mt19937 random(7);
    const auto forms = everyForm();
    for (int round = 0; round < test::rounds(3000); ++round) {
        std::string bytes = forms[random() % forms.size()].naming(fewNames);
        for (auto changes = random() % 4; changes > 0; --changes)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        if (random() % 4 == 0) bytes.insert(random() % bytes.size(), std::string(random() % 9, '\xFF'));
        const auto index = GitIndex::parse(bytes);
        EXPECT_FALSE(index && index->names(""));
    }
}

}  // namespace
}  // namespace vostrel
