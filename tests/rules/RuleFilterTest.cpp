#include <gtest/gtest.h>

#include "rules/RuleFilter.h"

namespace vostrel {
namespace {

TEST(RuleFilterTest, takesAChosenFileOnlyWhileNameVolumeAndInodeAgree) {
    RuleFilter filter;
    EXPECT_TRUE(filter.pinsAllow("anything", 1, "VOLUME")) << "no files were chosen";
    filter.pinnedFiles = {{"caf\u00E9", "VOLUME", 7}, {"b", "VOLUME", 8}};
    EXPECT_TRUE(filter.pinsAllow("caf\u00E9", 7, "VOLUME"));
    EXPECT_TRUE(filter.pinsAllow("cafe\u0301", 7, "VOLUME")) << "the same name, decomposed";
    EXPECT_FALSE(filter.pinsAllow("Caf\u00E9", 7, "VOLUME"));
    EXPECT_FALSE(filter.pinsAllow("caf\u00E9", 8, "VOLUME")) << "another chosen file's inode";
    EXPECT_FALSE(filter.pinsAllow("caf\u00E9", 7, "OTHER"));
}

TEST(RuleFilterTest, compilesBothPatternLists) {
    RuleFilter filter;
    filter.includeGlobs = {"*.log"};
    filter.excludeGlobs = {"keep*"};
    const auto globs = RuleFilter::CompiledGlobs::compile(filter);
    ASSERT_TRUE(globs);
    EXPECT_TRUE(globs->passes("a.log"));
    EXPECT_FALSE(globs->passes("a.txt"));
    EXPECT_FALSE(globs->passes("Keep.log"));
    EXPECT_TRUE(globs->excludes("keep me"));
    filter.excludeGlobs = {"[a"};
    EXPECT_EQ(RuleFilter::CompiledGlobs::compile(filter).error(), R"(A "[" in the pattern has no matching "]".)");
}

}  // namespace
}  // namespace vostrel
