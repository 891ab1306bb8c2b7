#include <gtest/gtest.h>

#include "SampleRules.h"
#include "rules/RuleStore.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

TEST(RuleStoreTest, givesBackTheBookThatWasSaved) {
    const TemporaryFolder data;
    const RuleStore store(data.path() / "Vostrel");
    EXPECT_EQ(store.load(sampleNow).value, RuleBook());

    const Rule rule = sampleRule();
    RuleBook book({rule});
    ASSERT_TRUE(book.approvePreview(rule, samplePlan(rule), PresetCatalog(), sampleNow));
    book.unreadableRules = {JSONValue("bad")};
    ASSERT_TRUE(store.save(book));
    EXPECT_EQ(store.load(sampleNow).value, book);
}

TEST(RuleStoreTest, aFileCutAnywhereIsMovedAsideWhole) {
    const TemporaryFolder data;
    const RuleStore store(data.path());
    ASSERT_TRUE(store.save(RuleBook({sampleRule()})));
    const std::string whole = data.read("rules.json");
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        data.makeFile("rules.json", whole.substr(0, length));
        const auto loaded = store.load(sampleNow);
        ASSERT_TRUE(loaded.recoveredFromCorruption && loaded.value == RuleBook()) << length;
        const auto aside = loaded.movedAsideTo.value_or("");
        ASSERT_EQ(data.read(aside.filename().native()), whole.substr(0, length));
        std::filesystem::remove(aside);
    }
}

}  // namespace
}  // namespace vostrel
