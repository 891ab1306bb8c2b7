#include <gtest/gtest.h>

#include "SampleRules.h"
#include "rules/RuleStore.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

TEST(RuleStoreTest, givesBackTheBookThatWasSavedOrMovesAFileAsideThatIsCutAnywhere) {
    const TemporaryFolder data;
    const RuleStore store(data.path());
    EXPECT_EQ(store.load(sampleNow).value, RuleBook());
    RuleBook book({sampleRule()});
    book.unreadableRules = {JSONValue("bad")};
    ASSERT_TRUE(store.save(book));
    EXPECT_EQ(store.load(sampleNow).value, book);

    const std::string whole = data.read("rules.json");
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        data.makeFile("rules.json", whole.substr(0, length));
        const auto loaded = store.load(sampleNow);
        ASSERT_TRUE(loaded.value == RuleBook() && loaded.movedAsideTo) << length;
        ASSERT_EQ(data.read(loaded.movedAsideTo->filename().native()), whole.substr(0, length));
        std::filesystem::remove(*loaded.movedAsideTo);
    }
}

}  // namespace
}  // namespace vostrel
